#include "platform/objects/NSClass.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSException.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

enum class Colour : std::uint32_t { Red = 1, Blue = 0xFFFFFFFF };

class Widget : public NSObject {
  KBX_OBJECT(Widget, NSObject)
 public:
  static Ref<Widget> make() { return Ref<Widget>::adopt(new Widget); }

  bool isReady(NSString* word) { return word && word->length() == 3; }
  Ref<NSString> label() const { return "label"_ns; }
  Ref<NSString> title() const noexcept { return "title"_ns; }
  NSString* borrowed() const { return _kept; }
  NSString* nothing() { return nullptr; }
  NSObject* echo(NSObject* object) noexcept { return object; }
  std::int64_t twice(std::int64_t value) { return 2 * value; }
  std::int32_t negated(std::int32_t value) { return -value; }
  std::uint32_t maximum() { return 0xFFFFFFFF; }
  std::uint64_t sum(std::uint64_t a, double b, bool c, NSString* d) {
    return a + static_cast<std::uint64_t>(b) + c + d->length();
  }
  double half(double value) { return value / 2; }
  Colour next(Colour colour) { return colour == Colour::Red ? Colour::Blue : Colour::Red; }
  SEL same(SEL selector) { return selector; }
  void touch() { ++touches; }
  void fail() { raiseInvalidArgument("from inside"); }
  void failForeign() { throw std::runtime_error("foreign"); }

  int touches = 0;

 private:
  Ref<NSString> _kept = NSString::stringWithUTF8("kept by the widget");
};
KBX_CLASS(Widget)

class Gadget final : public Widget {
  KBX_OBJECT(Gadget, Widget)
 public:
  static Ref<Gadget> make() { return Ref<Gadget>::adopt(new Gadget); }
};
KBX_CLASS(Gadget)

[[maybe_unused]] const bool hasMethods = [] {
  NSClass* widget = Widget::classObject();
  addMethod<&Widget::isReady>(widget, "isReady:");
  addMethod<&Widget::label>(widget, "label");
  addMethod<&Widget::title>(widget, "title");
  addMethod<&Widget::borrowed>(widget, "borrowed");
  addMethod<&Widget::nothing>(widget, "nothing");
  addMethod<&Widget::echo>(widget, "echo:");
  addMethod<&Widget::twice>(widget, "twice:");
  addMethod<&Widget::negated>(widget, "negated:");
  addMethod<&Widget::maximum>(widget, "maximum");
  addMethod<&Widget::sum>(widget, "sum:real:flag:text:");
  addMethod<&Widget::half>(widget, "half:");
  addMethod<&Widget::next>(widget, "next:");
  addMethod<&Widget::same>(widget, "same:");
  addMethod<&Widget::touch>(widget, "touch");
  addMethod<&Widget::fail>(widget, "fail");
  addMethod<&Widget::failForeign>(widget, "failForeign");
  return true;
}();

Method& method(NSObject* object, const char* selector) {
  return *object->objectClass()->instanceMethod(SEL(selector));
}

/// Calls a method whose result is an R.
template <class R, class... Arguments>
R called(NSObject* object, const char* selector, Arguments... arguments) {
  R result{};
  const std::vector<void*> addresses{&arguments...};
  invoke(object, method(object, selector), &result, addresses);
  return result;
}

template <class Block>
std::string reasonRaised(Block block) {
  try {
    block();
  } catch (const Raised& raised) {
    return text(raised.exception()->reason());
  }
  return "";
}

TEST(SEL, EqualNamesAreEqualSelectors) {
  EXPECT_EQ(SEL("kbxChild:"), SEL(std::string("kbx") + "Child:"));
  EXPECT_NE(SEL("kbxChild:"), SEL("kbxChild"));
  EXPECT_STREQ(SEL("kbxChild:").name(), "kbxChild:");
  EXPECT_FALSE(SEL());
  EXPECT_EQ(SEL().name(), nullptr);
  EXPECT_NE(SEL(), SEL(""));
}

TEST(NSClass, ClassesAreFoundByName) {
  EXPECT_EQ(NSClass::named("Gadget"), Gadget::classObject());
  EXPECT_EQ(NSClass::named("NSMutableArray"), NSMutableArray::classObject());
  EXPECT_EQ(NSClass::named("NSObject"), NSObject::classObject());
  EXPECT_EQ(NSClass::named("NSClass"), NSClass::classObject());
  EXPECT_EQ(NSClass::named("Nothing"), nullptr);
  EXPECT_EQ(NSClass::named(""), nullptr);
}

TEST(NSClass, TheFirstClassOfANameKeepsIt) {
  NSClass* first = NSClass::make("TwiceMade", NSObject::classObject());
  NSClass* second = NSClass::make("TwiceMade", Widget::classObject());
  EXPECT_NE(first, second);
  EXPECT_EQ(NSClass::named("TwiceMade"), first);
  EXPECT_EQ(second->name(), "TwiceMade");
  EXPECT_EQ(second->superclass(), Widget::classObject());
}

TEST(NSClass, SuperclassesLeadToTheRoot) {
  EXPECT_EQ(Gadget::classObject()->superclass(), Widget::classObject());
  EXPECT_EQ(Widget::classObject()->superclass(), NSObject::classObject());
  EXPECT_EQ(NSObject::classObject()->superclass(), nullptr);
}

TEST(NSClass, MetaclassesAreChainedLikeTheirClassesAndEndAtTheRootClass) {
  NSClass* gadget = Gadget::classObject()->objectClass();
  EXPECT_NE(gadget, Gadget::classObject());
  EXPECT_EQ(gadget->name(), "Gadget");
  EXPECT_EQ(gadget->superclass(), Widget::classObject()->objectClass());
  NSClass* root = NSObject::classObject()->objectClass();
  EXPECT_EQ(gadget->superclass()->superclass(), root);
  EXPECT_EQ(root->superclass(), NSObject::classObject());
  EXPECT_EQ(gadget->objectClass(), NSClass::classObject());
  EXPECT_EQ(NSClass::named("Gadget"), Gadget::classObject())
      << "a metaclass has no name of its own";
}

TEST(NSClass, AClassIsAnObject) {
  NSObject* widget = Widget::classObject();
  EXPECT_TRUE(widget->isClassObject());
  EXPECT_EQ(cast<NSClass>(widget), Widget::classObject());
  EXPECT_EQ(cast<NSClass>("a"_ns), nullptr);
  EXPECT_EQ(cast<NSClass>(nullptr), nullptr);
  EXPECT_TRUE(widget->isKindOfClass(NSObject::classObject()));
  EXPECT_FALSE(widget->isKindOfClass(Widget::classObject()));
  EXPECT_EQ(text(widget), "Widget");
  EXPECT_TRUE(isEqual(widget, Widget::classObject()));
}

TEST(NSClass, AProtocolIsAdoptedBySubclassesToo) {
  NSClass* base = NSClass::make("ProtocolBase", NSObject::classObject());
  NSClass* derived = NSClass::make("ProtocolDerived", base);
  derived->adoptProtocol("Own");
  base->adoptProtocol("Inherited");
  EXPECT_TRUE(derived->adoptsProtocol("Own"));
  EXPECT_TRUE(derived->adoptsProtocol("Inherited"));
  EXPECT_TRUE(derived->conformsToProtocol("Inherited")) << "a class answers for itself";
  EXPECT_FALSE(base->adoptsProtocol("Own"));
  EXPECT_FALSE(base->adoptsProtocol("Unheard"));
}

TEST(NSClass, TheTypesAreTakenFromTheMember) {
  auto widget = Widget::make();
  for (auto [selector, types] :
       std::vector<std::pair<const char*, const char*>>{{"isReady:", "c@:@"},
                                                        {"label", "@@:"},
                                                        {"title", "@@:"},
                                                        {"borrowed", "@@:"},
                                                        {"echo:", "@@:@"},
                                                        {"twice:", "q@:q"},
                                                        {"negated:", "i@:i"},
                                                        {"maximum", "I@:"},
                                                        {"sum:real:flag:text:", "Q@:Qdc@"},
                                                        {"half:", "d@:d"},
                                                        {"next:", "I@:I"},
                                                        {"same:", ":@::"},
                                                        {"touch", "v@:"}})
    EXPECT_EQ(method(widget, selector).types, types) << selector;
}

TEST(NSClass, ArgumentsAndResultsOfEveryTypeArrive) {
  auto widget = Widget::make();
  NSObject* word = "abc"_ns;
  EXPECT_EQ(called<signed char>(widget, "isReady:", word), 1);
  EXPECT_EQ(called<signed char>(widget, "isReady:", static_cast<NSObject*>(nullptr)), 0);
  EXPECT_EQ(called<std::int64_t>(widget, "twice:", std::int64_t{-21}), -42);
  EXPECT_EQ(called<std::int32_t>(widget, "negated:", std::int32_t{7}), -7);
  EXPECT_EQ(called<std::uint32_t>(widget, "maximum"), 0xFFFFFFFFU);
  EXPECT_EQ(called<double>(widget, "half:", 3.0), 1.5);
  EXPECT_EQ(called<std::uint64_t>(widget, "sum:real:flag:text:", std::uint64_t{100}, 20.9,
                                  static_cast<signed char>(1), word),
            124U);
  EXPECT_EQ(called<Colour>(widget, "next:", Colour::Red), Colour::Blue);
  EXPECT_EQ(called<SEL>(widget, "same:", SEL("copy")), SEL("copy"));
}

TEST(NSClass, ASmallResultWritesNoMoreThanItsOwnBytes) {
  struct {
    std::int32_t value = 0;
    std::int32_t behind = 0x5A5A5A5A;
  } result;
  std::int32_t seven = 7;
  void* arguments[] = {&seven};
  auto widget = Widget::make();
  invoke(widget, method(widget, "negated:"), &result.value, arguments);
  EXPECT_EQ(result.value, -7);
  EXPECT_EQ(result.behind, 0x5A5A5A5A);
}

TEST(NSClass, AnObjectResultIsOwnedWhetherItIsHandedOverOrBorrowed) {
  auto widget = Widget::make();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(text(called<Ref<NSObject>>(widget, "borrowed")), "kept by the widget");
    EXPECT_EQ(text(called<Ref<NSObject>>(widget, "label")), "label");
    invoke(widget, method(widget, "borrowed"), nullptr, {});
    EXPECT_EQ(called<Ref<NSObject>>(widget, "nothing"), nullptr);
    EXPECT_TRUE(
        isSame(called<Ref<NSObject>>(widget, "echo:", static_cast<NSObject*>(widget)), widget));
  }
  EXPECT_EQ(text(widget->borrowed()), "kept by the widget");
}

TEST(NSClass, AResultMayBeDropped) {
  auto widget = Widget::make();
  std::int64_t value = 1;
  void* arguments[] = {&value};
  invoke(widget, method(widget, "twice:"), nullptr, arguments);
  invoke(widget, method(widget, "label"), nullptr, {});
  invoke(widget, method(widget, "touch"), &value, {});
  EXPECT_EQ(widget->touches, 1);
  EXPECT_EQ(value, 1) << "nothing is stored for void";
}

TEST(NSClass, TheNumberOfArgumentsMustBeThatOfTheTypes) {
  auto widget = Widget::make();
  std::int64_t value = 1;
  void* two[] = {&value, &value};
  EXPECT_EQ(reasonRaised([&] { invoke(widget, method(widget, "twice:"), nullptr, {}); }),
            "0 arguments for the method twice: of the types q@:q");
  EXPECT_EQ(reasonRaised([&] { invoke(widget, method(widget, "twice:"), nullptr, two); }),
            "2 arguments for the method twice: of the types q@:q");
  EXPECT_NE(reasonRaised([&] { performSelector(widget, SEL("echo:")); }), "");
}

TEST(NSClass, ExceptionsPassThroughADynamicCall) {
  auto widget = Widget::make();
  EXPECT_EQ(reasonRaised([&] { invoke(widget, method(widget, "fail"), nullptr, {}); }),
            "from inside");
  EXPECT_THROW(invoke(widget, method(widget, "failForeign"), nullptr, {}), std::runtime_error);
}

TEST(NSClass, LookupGoesUpTheSuperclasses) {
  EXPECT_EQ(Gadget::classObject()->instanceMethod(SEL("label")),
            Widget::classObject()->instanceMethod(SEL("label")));
  EXPECT_TRUE(Gadget::make()->respondsToSelector(SEL("label")));
  EXPECT_FALSE(Gadget::make()->respondsToSelector(SEL("labels")));
  EXPECT_FALSE(Gadget::make()->respondsToSelector(SEL()));
  EXPECT_FALSE(Widget::classObject()->respondsToSelector(SEL("label"))) << "a class is not asked";
  EXPECT_EQ(Gadget::classObject()->instanceMethod(SEL()), nullptr);
}

TEST(NSClass, WhatTheRootClassAnswersEveryClassAnswers) {
  EXPECT_TRUE(Gadget::make()->respondsToSelector(SEL("isKindOfClass:")));
  EXPECT_TRUE(Gadget::classObject()->respondsToSelector(SEL("isKindOfClass:")));
}

TEST(NSClass, AddingLooksAtTheClassItselfOnly) {
  NSClass* derived = NSClass::make("AddingDerived", Widget::classObject());
  EXPECT_TRUE(derived->directSelectors().empty());
  EXPECT_TRUE(addMethod<&Widget::title>(derived, "label")) << "inherited ones are replaced";
  EXPECT_FALSE(addMethod<&Widget::label>(derived, "label")) << "its own ones are not";
  EXPECT_NE(derived->instanceMethod(SEL("label")),
            Widget::classObject()->instanceMethod(SEL("label")));
  EXPECT_TRUE(addMethod<&Widget::label>(derived, "another"));
  EXPECT_EQ(derived->directSelectors(), (std::vector{SEL("label"), SEL("another")}))
      << "in the order of their definition";
}

TEST(NSClass, ClassMethodsLiveInTheMetaclass) {
  NSClass* made = NSClass::make("WithClassMethod", NSObject::classObject());
  auto describe = +[](NSObject* self, SEL) -> NSObject* { return self->description().leak(); };
  EXPECT_TRUE(
      made->objectClass()->addMethod(SEL("classText"), reinterpret_cast<IMP>(describe), "@@:"));
  EXPECT_EQ(text(performSelector(made, SEL("classText"))), "WithClassMethod");
  NSClass* below = NSClass::make("BelowClassMethod", made);
  EXPECT_EQ(text(performSelector(below, SEL("classText"))), "BelowClassMethod");
  EXPECT_EQ(made->instanceMethod(SEL("classText")), nullptr);
}

TEST(NSClass, AnExchangeChangesWhatDynamicCallsFind) {
  auto gadget = Gadget::make();
  Method *label = &method(gadget, "label"), *title = &method(gadget, "title");
  NSClass::exchangeImplementations(label, title);
  EXPECT_EQ(text(performSelector(gadget, SEL("label"))), "title");
  EXPECT_EQ(text(performSelector(gadget, SEL("title"))), "label");
  EXPECT_EQ(text(gadget->label()), "label") << "a direct call stays";
  NSClass::exchangeImplementations(label, title);
  NSClass::exchangeImplementations(label, label);
  NSClass::exchangeImplementations(label, nullptr);
  NSClass::exchangeImplementations(nullptr, label);
  EXPECT_EQ(text(performSelector(gadget, SEL("label"))), "label");
}

TEST(NSClass, PerformingASelectorAnswersItsObject) {
  auto widget = Widget::make();
  EXPECT_EQ(text(performSelector(widget, SEL("label"))), "label");
  EXPECT_EQ(performSelector(widget, SEL("touch")), nullptr) << "no object, no result";
  EXPECT_EQ(performSelector(widget, SEL("maximum")), nullptr);
  EXPECT_EQ(widget->touches, 1);
  EXPECT_EQ(performSelector(nullptr, SEL("label")), nullptr);
}

TEST(NSClass, AnUnknownSelectorRaises) {
  auto widget = Widget::make();
  const std::string start = "-[Widget labels]: unrecognized selector sent to instance 0x";
  EXPECT_EQ(reasonRaised([&] { performSelector(widget, SEL("labels")); }).substr(0, start.size()),
            start);
  const std::string startOfClass = "+[Widget label]: unrecognized selector sent to class 0x";
  EXPECT_EQ(reasonRaised([&] {
              performSelector(Widget::classObject(), SEL("label"));
            }).substr(0, startOfClass.size()),
            startOfClass);
  EXPECT_NE(reasonRaised([&] { performSelector(widget, SEL()); }), "");
}

}  // namespace
}  // namespace kbx
