# Gives a Windows program the project's version, written as the banner writes it: 1.00.00.0.
function(quillon_version_resource target)
  set(quillon_version_text ${PROJECT_VERSION_MAJOR})
  foreach(number ${PROJECT_VERSION_MINOR} ${PROJECT_VERSION_PATCH})
    if(number LESS 10)
      set(number 0${number})
    endif()
    string(APPEND quillon_version_text .${number})
  endforeach()
  string(APPEND quillon_version_text .0)
  configure_file(${PROJECT_SOURCE_DIR}/src/platform/windows/version.rc.in
                 ${PROJECT_BINARY_DIR}/version.rc @ONLY)
  # A library of its own: the compiler's options are none of the resource compiler's.
  add_library(${target}_version OBJECT ${PROJECT_BINARY_DIR}/version.rc)
  target_link_libraries(${target} PRIVATE ${target}_version)
endfunction()
