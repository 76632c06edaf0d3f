# A fake connection of the database layer. The layer's values and recordsets are the real ones.
kv_fake(fake_ado fake_ado.cpp)
target_link_libraries(fake_ado PUBLIC fake_locale kv_ado_values)
