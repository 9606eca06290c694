# Storages, sources, targets and the run: what needs databases or whole steps.
target_sources(quillon_tests PRIVATE
  consumers/text_file_test.cpp
  providers/database_query_test.cpp
  providers/text_file_test.cpp
  run/manager_test.cpp
  storages/odbc_database_test.cpp
)
if(WIN32)
  target_sources(quillon_tests PRIVATE support/sqlite_windows.cpp)
else()
  target_sources(quillon_tests PRIVATE support/sqlite_posix.cpp)
endif()
