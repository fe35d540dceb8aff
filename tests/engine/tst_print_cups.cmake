set_tests_properties(tst_print_cups PROPERTIES TIMEOUT 180 LABELS cups)
