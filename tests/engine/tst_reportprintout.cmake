set_tests_properties(tst_reportprintout PROPERTIES TIMEOUT 180 LABELS cups)
