set_tests_properties(tst_nestedtick PROPERTIES TIMEOUT 120 LABELS "scheduler;peers")
