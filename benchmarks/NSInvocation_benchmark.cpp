// Dynamic calls against direct calls through libffi, with the same method and the same values.
#include <benchmark/benchmark.h>
#include <ffi.h>

#include <cstdlib>

#include "NSObject+KBXInvocations.h"
#include "platform/runtime/DynamicCalls.h"
#include "platform/runtime/NSInvocation.h"

namespace kbx {
namespace {

class Adder final : public NSObject {
  KBX_OBJECT(Adder, NSObject)
 public:
  static Ref<Adder> make() { return Ref<Adder>::adopt(new Adder); }
  std::int64_t add(std::int64_t a, std::int64_t b) { return a + b; }
};
KBX_CLASS(Adder)
[[maybe_unused]] const bool hasMethods = addMethod<&Adder::add>(Adder::classObject(), "add:to:");

const SEL kSelector("add:to:");

/// Calls `once` with a growing number and checks what it adds.
template <class Once>
void adds(benchmark::State& state, Once once) {
  std::int64_t a = 0;
  for (auto _ : state) {
    const std::int64_t sum = once(a, 5);
    if (sum != a + 5) std::abort();
    ++a;
  }
}

/// The peer: everything that can be prepared is prepared.
void libffi(benchmark::State& state) {
  auto adder = Adder::make();
  ffi_type* types[] = {&ffi_type_pointer, &ffi_type_pointer, &ffi_type_sint64, &ffi_type_sint64};
  ffi_cif call;
  if (ffi_prep_cif(&call, FFI_DEFAULT_ABI, 4, &ffi_type_sint64, types) != FFI_OK) std::abort();
  IMP body = adder->objectClass()->instanceMethod(kSelector)->implementation;
  NSObject* self = adder;
  SEL selector = kSelector;
  adds(state, [&](std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    void* values[] = {&self, &selector, &a, &b};
    ffi_call(&call, body, &sum, values);
    return sum;
  });
}

/// A method that was looked up before.
void invokeMethod(benchmark::State& state) {
  auto adder = Adder::make();
  const Method& method = *adder->objectClass()->instanceMethod(kSelector);
  adds(state, [&](std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    void* const values[] = {&a, &b};
    invoke(adder, method, &sum, values);
    return sum;
  });
}

/// An invocation that is used again, its method looked up at each call.
void invocation(benchmark::State& state) {
  auto adder = Adder::make();
  auto call =
      NSInvocation::invocationWithMethodSignature(methodSignatureForSelector(adder, kSelector));
  call->setTarget(adder);
  call->setSelector(kSelector);
  adds(state, [&](std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    call->setArgument(&a, 2);
    call->setArgument(&b, 3);
    call->invoke();
    call->getReturnValue(&sum);
    return sum;
  });
}

/// Everything anew: the signature, an invocation, its arguments.
void getReturnValue(benchmark::State& state) {
  auto adder = Adder::make();
  adds(state, [&](std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    kbxGetReturnValue(adder, &sum, kSelector, {&a, &b});
    return sum;
  });
}

BENCHMARK(libffi);
BENCHMARK(invokeMethod);
BENCHMARK(invocation);
BENCHMARK(getReturnValue);

}  // namespace
}  // namespace kbx
