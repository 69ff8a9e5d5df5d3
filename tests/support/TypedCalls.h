// TypedCalls: a class with a method for every type that a dynamic call can pass.
#pragma once

#include <cstdint>

#include "platform/CoreFoundation.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSGeometry.h"
#include "platform/objects/NSRange.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Answers each value as it came, so that a call shows both ways. NAME is the selector.
class Echo : public NSObject {
  KBX_OBJECT(Echo, NSObject)
 public:
  static Ref<Echo> make() { return Ref<Echo>::adopt(new Echo); }

  bool flag(bool value) { return value; }
  signed char byte(signed char value) { return value; }
  unsigned char octet(unsigned char value) { return value; }
  std::int16_t shortOne(std::int16_t value) { return value; }
  std::uint16_t wideShort(std::uint16_t value) { return value; }
  std::int32_t whole(std::int32_t value) { return value; }
  std::uint32_t natural(std::uint32_t value) { return value; }
  std::int64_t longOne(std::int64_t value) { return value; }
  std::uint64_t wideLong(std::uint64_t value) { return value; }
  float real(float value) { return value; }
  double wideReal(double value) { return value; }
  long double widestReal(long double value) { return value; }
  SEL selector(SEL value) { return value; }
  NSClass* type(NSClass* value) { return value; }
  void* pointer(void* value) { return value; }
  char* text(char* value) { return value; }
  const char* constantText(const char* value) { return value; }
  NSRange range(NSRange value) { return value; }
  NSPoint point(NSPoint value) { return value; }
  NSSize size(NSSize value) { return value; }
  NSRect rect(NSRect value) { return value; }
  CFStringRef core(CFStringRef value) { return value; }
  NSObject* object(NSObject* value) { return value; }
  void nothing() { ++calls; }

  int calls = 0;
};

/// A method with its types.
struct TypedCall {
  const char* selector;
  const char* types;
};

inline constexpr TypedCall kTypedCalls[] = {
    {"flag:", "c@:c"},
    {"byte:", "c@:c"},
    {"octet:", "C@:C"},
    {"short:", "s@:s"},
    {"wideShort:", "S@:S"},
    {"whole:", "i@:i"},
    {"natural:", "I@:I"},
    {"long:", "q@:q"},
    {"wideLong:", "Q@:Q"},
    {"real:", "f@:f"},
    {"wideReal:", "d@:d"},
    {"widestReal:", "D@:D"},
    {"selector:", ":@::"},
    {"type:", "#@:#"},
    {"pointer:", "^v@:^v"},
    {"text:", "*@:*"},
    {"constantText:", "r*@:r*"},
    {"range:", "{_NSRange=QQ}@:{_NSRange=QQ}"},
    {"point:", "{CGPoint=dd}@:{CGPoint=dd}"},
    {"size:", "{CGSize=dd}@:{CGSize=dd}"},
    {"rect:", "{CGRect={CGPoint=dd}{CGSize=dd}}@:{CGRect={CGPoint=dd}{CGSize=dd}}"},
    {"object:", "@@:@"},
    {"nothing", "v@:"},
};

/// Calls `check` with each selector and a value of its type, or two where limits matter.
template <class Check>
void forEveryType(Check check) {
  static char letters[] = "letters";
  const char* const constantLetters = letters;
  check("flag:", static_cast<signed char>(1));
  check("flag:", static_cast<signed char>(0));
  check("byte:", static_cast<signed char>(-128));
  check("octet:", static_cast<unsigned char>(255));
  check("short:", std::int16_t{-32768});
  check("wideShort:", std::uint16_t{65535});
  check("whole:", std::int32_t{-2147483647});
  check("natural:", std::uint32_t{0xFFFFFFFF});
  check("long:", std::int64_t{-0x7FFFFFFFFFFFFFFF});
  check("wideLong:", std::uint64_t{0xFFFFFFFFFFFFFFFF});
  check("real:", 1.25F);
  check("wideReal:", -1e300);
  check("selector:", SEL("copy"));
  check("type:", NSString::classObject());
  check("pointer:", static_cast<void*>(letters));
  check("text:", static_cast<char*>(letters));
  check("constantText:", constantLetters);
  check("range:", NSRange{3, 0x7FFFFFFFFFFFFFFF});
  check("point:", NSPoint{1.5, -2.5});
  check("size:", NSSize{640, 480});
  check("rect:", NSRect{{1, 2}, {3, 4}});
}

inline NSClass* Echo::classObject() {
  static NSClass* const object = NSClass::make("Echo", Superclass::classObject());
  return object;
}

namespace detail {
inline const bool echoes = [] {
  NSClass* echo = Echo::classObject();
  return addMethod<&Echo::flag>(echo, "flag:") && addMethod<&Echo::byte>(echo, "byte:") &&
         addMethod<&Echo::octet>(echo, "octet:") && addMethod<&Echo::shortOne>(echo, "short:") &&
         addMethod<&Echo::wideShort>(echo, "wideShort:") &&
         addMethod<&Echo::whole>(echo, "whole:") && addMethod<&Echo::natural>(echo, "natural:") &&
         addMethod<&Echo::longOne>(echo, "long:") &&
         addMethod<&Echo::wideLong>(echo, "wideLong:") && addMethod<&Echo::real>(echo, "real:") &&
         addMethod<&Echo::wideReal>(echo, "wideReal:") &&
         addMethod<&Echo::widestReal>(echo, "widestReal:") &&
         addMethod<&Echo::selector>(echo, "selector:") && addMethod<&Echo::type>(echo, "type:") &&
         addMethod<&Echo::pointer>(echo, "pointer:") && addMethod<&Echo::text>(echo, "text:") &&
         addMethod<&Echo::constantText>(echo, "constantText:") &&
         addMethod<&Echo::range>(echo, "range:") && addMethod<&Echo::point>(echo, "point:") &&
         addMethod<&Echo::size>(echo, "size:") && addMethod<&Echo::rect>(echo, "rect:") &&
         addMethod<&Echo::core>(echo, "core:") && addMethod<&Echo::object>(echo, "object:") &&
         addMethod<&Echo::nothing>(echo, "nothing");
}();
}  // namespace detail

}  // namespace kbx
