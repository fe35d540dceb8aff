add_dependencies(tst_instances qorlomanagerd)
target_compile_definitions(tst_instances PRIVATE QORLO_DAEMON="$<TARGET_FILE:qorlomanagerd>")
set_tests_properties(tst_instances PROPERTIES TIMEOUT 120 LABELS "app;e2e")
