# Warnings, all of them errors, and the sanitizers of the chosen preset: for every target of the project.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wno-missing-field-initializers -Werror
                    "$<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-Wnon-virtual-dtor;-Wold-style-cast;-Woverloaded-virtual>")
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options(-Wthread-safety)
  if(NOT UMS_UNITY)
    add_compile_options(-Wshadow)  # compiled as one, sources seem to shadow what another one keeps to itself
  endif()
else()
  # This compiler takes the enumerators of a scoped enumeration for shadows of types of the same name, and
  # misfires on std::optional, std::variant and std::string in its optimiser.
  add_compile_options(-Wshadow=local -Wno-maybe-uninitialized -Wno-restrict -Wno-array-bounds
                      -Wno-stringop-overflow -Wno-stringop-overread)
endif()
if(UMS_SANITIZE)
  add_compile_options(-fsanitize=${UMS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${UMS_SANITIZE})
endif()
if(UMS_SANITIZE MATCHES "thread")
  add_compile_options(-O1)  # without it every byte that a test looks at costs a call
endif()
