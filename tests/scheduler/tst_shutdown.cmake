add_dependencies(tst_shutdown qorlomanagerd)
target_compile_definitions(tst_shutdown PRIVATE QORLO_DAEMON="$<TARGET_FILE:qorlomanagerd>")
set_tests_properties(tst_shutdown PROPERTIES TIMEOUT 120 LABELS "scheduler;e2e")
