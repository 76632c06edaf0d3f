kv_fake(fake_registry fake_registry.cpp)
kv_fake(fake_clock fake_clock.cpp)
