// What the sanitizers' runtimes ask a program of unit tests when it starts: an allocation that
// cannot be had gives null, as it does without them, where they would end the process.

extern "C" {

[[gnu::visibility("default")]] const char* __asan_default_options();
[[gnu::visibility("default")]] const char* __tsan_default_options();

const char* __asan_default_options() { return "allocator_may_return_null=1:print_suppressions=0"; }

// A child that was forked beside a thread may start threads of its own: a peer of the lab is one.
const char* __tsan_default_options() { return "allocator_may_return_null=1:die_after_fork=0"; }

}  // extern "C"
