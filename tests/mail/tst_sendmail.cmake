set_tests_properties(tst_sendmail PROPERTIES TIMEOUT 180 LABELS "mail;peers")
