set_tests_properties(tst_deskcommands PROPERTIES TIMEOUT 180 LABELS "ui;mail;peers")
