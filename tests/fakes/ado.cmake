# A database without one. Links the layer's values and recordsets, which are real.
kv_fake(fake_ado fake_ado.cpp)
target_link_libraries(fake_ado PUBLIC fake_locale kv_ado_values)
