set_tests_properties(tst_smtpmail PROPERTIES TIMEOUT 180 LABELS "mail;peers")
