set_tests_properties(tst_reportmail PROPERTIES TIMEOUT 240 LABELS "mail;peers")
