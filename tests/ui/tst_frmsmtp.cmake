set_tests_properties(tst_frmsmtp PROPERTIES TIMEOUT 180 LABELS "ui;mail;peers")
