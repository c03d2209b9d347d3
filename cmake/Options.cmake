# Compiler options of our own code.

add_library(tonalign_options INTERFACE)
target_include_directories(tonalign_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(tonalign_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # A filter's coefficients are the same on every processor: the compiler fuses nothing by itself.
  -ffp-contract=off)

if(TONALIGN_SANITIZE)
  target_compile_options(tonalign_options INTERFACE
    -fsanitize=${TONALIGN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
  target_link_options(tonalign_options INTERFACE -fsanitize=${TONALIGN_SANITIZE})
endif()
if(TONALIGN_LIBFUZZER)
  target_compile_options(tonalign_options INTERFACE -fsanitize=fuzzer-no-link -g1)
endif()
