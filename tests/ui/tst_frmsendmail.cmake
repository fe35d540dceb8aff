set_tests_properties(tst_frmsendmail PROPERTIES TIMEOUT 180 LABELS "ui;mail;peers")
