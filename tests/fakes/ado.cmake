# Fakes of the database layer's connections and commands. Values and recordsets are the layer's own.
kv_fake(fake_ado fake_ado.cpp)
target_link_libraries(fake_ado PUBLIC fake_locale kv_ado_values)
