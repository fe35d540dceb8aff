# One LibreOffice conversion of every word-processor file, and 90 exports of the demo reports.
set_tests_properties(tst_demogolden PROPERTIES RESOURCE_LOCK libreoffice LABELS libreoffice TIMEOUT 600)
