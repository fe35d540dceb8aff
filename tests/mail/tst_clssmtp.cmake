set_tests_properties(tst_clssmtp PROPERTIES TIMEOUT 120 LABELS "mail;peers")
