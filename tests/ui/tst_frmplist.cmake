target_link_libraries(tst_frmplist PRIVATE Qt6::Sql)
