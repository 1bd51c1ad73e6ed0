#include <cerrno>

#include "umsservice/FileSystem.h"

namespace umsservice::testing {
namespace {

using Action = FileError::Action;

TEST(FileErrors, CarryTheCodeOfThePlatformsFileManager) {
  struct Row {
    int systemNumber;
    uint32_t onReading;
    uint32_t onWriting;
  };
  const Row rows[] = {
      {ENOENT, 260, 4},         {ENOTDIR, 260, 4},  {EACCES, 257, 513}, {EPERM, 257, 513}, {EEXIST, 516, 516},
      {ENAMETOOLONG, 514, 514}, {ENOSPC, 640, 640}, {EDQUOT, 640, 640}, {EROFS, 642, 642},
  };
  for (const Row& row : rows) {
    EXPECT_EQ((FileError{row.systemNumber, Action::Reading, ""}.code()), row.onReading) << row.systemNumber;
    EXPECT_EQ((FileError{row.systemNumber, Action::Writing, ""}.code()), row.onWriting) << row.systemNumber;
  }
}

TEST(FileErrors, HaveAnUnknownCodeForEveryOtherCause) {
  for (int number : {EIO, EFBIG, EISDIR, EINVAL, ENOTEMPTY, EXDEV, ELOOP, EMFILE, EBUSY, ENODEV, ENXIO, EBADF,
                     EOPNOTSUPP, ENODATA, ETXTBSY, 0, -1, 99999}) {
    EXPECT_EQ((FileError{number, Action::Reading, ""}.code()), 256u) << number;
    EXPECT_EQ((FileError{number, Action::Writing, ""}.code()), 512u) << number;
  }
}

TEST(FileErrors, SayInWordsWhatTheSystemSays) {
  EXPECT_EQ((FileError{ENOSPC, Action::Writing, "/a"}.words()), "No space left on device");
  EXPECT_EQ((FileError{ENOENT, Action::Reading, "/a"}.words()), "No such file or directory");
  EXPECT_FALSE((FileError{99999, Action::Reading, "/a"}.words()).empty());
}

TEST(FileErrors, AreDescribedByCodeWordsAndPath) {
  EXPECT_EQ((FileError{ENOSPC, Action::Writing, "/card/a.mp3"}.description()),
            "Error Domain=NSCocoaErrorDomain Code=640 \"No space left on device\" (/card/a.mp3)");
  EXPECT_EQ((FileError{ENOENT, Action::Reading, "/card/100%d"}.description()),
            "Error Domain=NSCocoaErrorDomain Code=260 \"No such file or directory\" (/card/100%d)");
}

TEST(FileResults, HoldEitherAValueOrTheReasonWhyThereIsNone) {
  FileResult<int> good(7);
  ASSERT_TRUE(good);
  EXPECT_EQ(*good, 7);
  FileResult<int> bad(FileError{EIO, Action::Reading, "/a"});
  ASSERT_FALSE(bad);
  EXPECT_EQ(bad.error().systemNumber, EIO);
  EXPECT_EQ(bad.error().path, "/a");
}

}  // namespace
}  // namespace umsservice::testing
