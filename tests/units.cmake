target_sources(quillon_tests PRIVATE
  base/utf8_test.cpp
  config/configuration_test.cpp
  config/job_file_reader_test.cpp
  core/parameter_set_test.cpp
  files/dfile_test.cpp
  files/format_test.cpp
  files/line_splitter_test.cpp
)
