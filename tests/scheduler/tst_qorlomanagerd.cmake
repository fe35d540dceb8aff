add_dependencies(tst_qorlomanagerd qorlomanagerd)
target_compile_definitions(tst_qorlomanagerd PRIVATE QORLO_DAEMON="$<TARGET_FILE:qorlomanagerd>")
set_tests_properties(tst_qorlomanagerd PROPERTIES TIMEOUT 120 LABELS "scheduler;peers;e2e")
