option(QUILLON_SANITIZERS "Build with the address and undefined-behaviour sanitizers" OFF)

# What every target of ours is built with.
function(quillon_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  if(QUILLON_SANITIZERS)
    target_compile_options(${target} PUBLIC -fsanitize=address,undefined -fno-sanitize-recover=all
                                            -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
  if(QUILLON_FUZZERS)
    target_compile_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
  endif()
endfunction()
