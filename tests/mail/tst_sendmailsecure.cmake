set_tests_properties(tst_sendmailsecure PROPERTIES TIMEOUT 120 LABELS "mail;peers")
