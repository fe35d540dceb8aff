# The package is made from the built programs and the install rules of this build folder.
add_dependencies(tst_package qorlomanagerd qorlo_dist)
if(TARGET qorlomanager)
  add_dependencies(tst_package qorlomanager)
endif()
target_compile_definitions(tst_package PRIVATE QORLO_CPACK="${CMAKE_CPACK_COMMAND}")
set_tests_properties(tst_package PROPERTIES TIMEOUT 900 LABELS "app;package;e2e" RESOURCE_LOCK cpack)
