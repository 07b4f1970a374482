// What the C++ runtime's containers and texts throw, in the place of its own exceptions, which
// carry texts, copies of texts and what these need along: a quarter of the program's size. All that
// the program asks of one is that it is a std::exception.

#include <exception>
#include <new>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl50-cpp,cert-dcl51-cpp,cert-dcl58-cpp):
// the runtime's own names
namespace std {

void __throw_bad_alloc() { throw bad_alloc(); }
void __throw_bad_array_new_length() { throw bad_alloc(); }
void __throw_length_error(const char* /*what*/) { throw bad_alloc(); }
void __throw_logic_error(const char* /*what*/) { throw exception(); }
void __throw_out_of_range_fmt(const char* /*what*/, ...) { throw exception(); }
void __throw_bad_function_call() { throw exception(); }

}  // namespace std
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl50-cpp,cert-dcl51-cpp,cert-dcl58-cpp)
