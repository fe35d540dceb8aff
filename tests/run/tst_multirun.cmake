set_tests_properties(tst_multirun PROPERTIES TIMEOUT 240 LABELS "mail;peers")
