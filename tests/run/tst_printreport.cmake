set_tests_properties(tst_printreport PROPERTIES TIMEOUT 180 LABELS cups)
