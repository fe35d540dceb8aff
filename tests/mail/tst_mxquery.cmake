set_tests_properties(tst_mxquery PROPERTIES TIMEOUT 90 LABELS "mail;peers")
