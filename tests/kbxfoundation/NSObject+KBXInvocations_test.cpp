#include "NSObject+KBXInvocations.h"

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"
#include "tests/support/TypedCalls.h"

namespace kbx {
namespace {

constexpr std::uint32_t kCode = 0x54455854;  // TEXT

class Recorder final : public Echo {
  KBX_OBJECT(Recorder, Echo)
 public:
  static Ref<Recorder> make() { return Ref<Recorder>::adopt(new Recorder); }

  bool isReady() { return true; }
  bool isSmall(NSString* word) { return word && word->length() < 4; }
  std::uint32_t creator() { return kCode; }
  void setFlag(bool value) { record(value ? "YES" : "NO"); }
  void setCode(std::uint32_t value) { record(std::to_string(value)); }
  void setNumber(std::int64_t value) { record(std::to_string(value)); }
  void add(NSObject* object) { record(kbx::text(object)); }
  Ref<NSString> doubled(NSString* word) {
    add(word);
    return word->length() ? word->stringByAppendingString(word) : nullptr;
  }
  std::int64_t joined(std::int64_t a, std::int64_t b, NSString* c) {
    record(kbx::text(c));
    return 10 * a + b;
  }
  /// Changes the list that is being walked.
  void grow(NSObject*) { growing->addObject("more"_ns); }
  NSObject* growAndAnswer(NSObject* object) {
    grow(object);
    return object;
  }

  void record(const std::string& what) { seen += what + ";"; }
  std::string seen;
  Ref<NSMutableArray> growing;
};
KBX_CLASS(Recorder)

[[maybe_unused]] const bool hasMethods = [] {
  NSClass* recorder = Recorder::classObject();
  addMethod<&Recorder::isReady>(recorder, "isReady");
  addMethod<&Recorder::isSmall>(recorder, "isSmall:");
  addMethod<&Recorder::creator>(recorder, "creator");
  addMethod<&Recorder::setFlag>(recorder, "setFlag:");
  addMethod<&Recorder::setCode>(recorder, "setCode:");
  addMethod<&Recorder::setNumber>(recorder, "setNumber:");
  addMethod<&Recorder::add>(recorder, "add:");
  addMethod<&Recorder::doubled>(recorder, "doubled:");
  addMethod<&Recorder::joined>(recorder, "joined:and:with:");
  addMethod<&Recorder::grow>(recorder, "grow:");
  addMethod<&Recorder::growAndAnswer>(recorder, "growAndAnswer:");
  return true;
}();

const char* const kInvalid = "NSInvalidArgumentException";

// ---- The generic call --------------------------------------------------------------------

TEST(NSObjectKBXInvocations, EveryTypeGoesInAndComesOut) {
  auto recorder = Recorder::make();
  forEveryType([&](const char* selector, auto value) {
    SCOPED_TRACE(selector);
    struct {
      decltype(value) result{};
      unsigned char behind[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    } got;
    kbxGetReturnValue(recorder, &got.result, SEL(selector), {&value});
    EXPECT_TRUE(got.result == value);
    for (unsigned char i = 0; i < 8; ++i) EXPECT_EQ(got.behind[i], i + 1) << "bytes behind it";
  });
}

TEST(NSObjectKBXInvocations, AnObjectGoesInAndComesOutOwned) {
  auto recorder = Recorder::make();
  auto word = string("counted word");
  NSObject* argument = word;
  Ref<NSObject> result;
  kbxGetReturnValue(recorder, &result, SEL("object:"), {&argument});
  EXPECT_TRUE(isSame(result, word));
  kbxGetReturnValue(recorder, &result, SEL("doubled:"), {&argument});
  word = nullptr;
  EXPECT_EQ(text(result), "counted wordcounted word");
}

TEST(NSObjectKBXInvocations, TheTypesSayHowManyAddressesAreRead) {
  auto recorder = Recorder::make();
  const std::int64_t a = 4, b = 2;
  NSObject* word = "word"_ns;
  std::int64_t result = 0;
  kbxGetReturnValue(recorder, &result, SEL("joined:and:with:"), {&a, &b, &word});
  EXPECT_EQ(result, 42);
  kbxGetReturnValue(recorder, &result, SEL("joined:and:with:"), {&a, &b, &word, nullptr, &a});
  EXPECT_EQ(result, 42) << "further ones are not looked at";
  EXPECT_EQ(recorder->seen, "word;word;");
}

TEST(NSObjectKBXInvocations, OnlyTheFirstAddressMayBeAbsent) {
  auto recorder = Recorder::make();
  const std::int64_t b = 2;
  NSObject* word = nullptr;
  std::int64_t result = 0;
  kbxGetReturnValue(recorder, &result, SEL("joined:and:with:"), {nullptr, &b, &word});
  EXPECT_EQ(result, 2) << "its argument is zero";
  for (auto addresses :
       {std::initializer_list<const void*>{}, {&b}, {&b, nullptr, &word}, {&b, &b}})
    EXPECT_EQ(nameRaisedBy([&] {
                kbxGetReturnValue(recorder, &result, SEL("joined:and:with:"), addresses);
              }),
              kInvalid);
}

TEST(NSObjectKBXInvocations, AResultMayBeDroppedAndVoidStoresNothing) {
  auto recorder = Recorder::make();
  const std::int64_t value = 3;
  kbxGetReturnValue(recorder, nullptr, SEL("long:"), {&value});
  NSObject* word = "word"_ns;
  kbxGetReturnValue(recorder, nullptr, SEL("doubled:"), {&word});
  std::uint64_t untouched = 7;
  kbxGetReturnValue(recorder, &untouched, SEL("nothing"), {});
  EXPECT_EQ(untouched, 7u);
  EXPECT_EQ(recorder->calls, 1);
}

TEST(NSObjectKBXInvocations, AnUnknownSelectorRaises) {
  auto recorder = Recorder::make();
  auto raised = raisedBy([&] { kbxGetReturnValue(recorder, nullptr, SEL("absent"), {}); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), kInvalid);
  EXPECT_TRUE(raised->reason()->hasPrefix(
      "-[Recorder absent]: unrecognized selector sent to instance 0x"_ns));
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformBOOLSelector(recorder, SEL("absent")); }), kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformVoidSelectorWithBool(recorder, SEL("absent:"), true); }),
            kInvalid);
}

TEST(NSObjectKBXInvocations, AClassThatTakesUnknownSelectorsStopsTheCall) {
  NSClass* made = NSClass::make("RecorderOfTheUnknown", Recorder::classObject());
  auto ignore = +[](NSObject*, SEL, SEL) {};
  made->objectClass()->addMethod(SEL("doesNotRecognizeSelector:"), reinterpret_cast<IMP>(ignore),
                                 "v@::");
  std::uint64_t untouched = 7;
  kbxGetReturnValue(made, &untouched, SEL("absent"), {});
  EXPECT_EQ(untouched, 7u);
  EXPECT_EQ(kbxPerformOSTypeSelector(made, SEL("absent")), kUninitializedOSType);
}

// ---- One value ---------------------------------------------------------------------------

TEST(NSObjectKBXInvocations, ABOOLIsAnswered) {
  auto recorder = Recorder::make();
  EXPECT_TRUE(kbxPerformBOOLSelector(recorder, SEL("isReady")));
  EXPECT_TRUE(kbxPerformBOOLSelector(recorder, SEL("isSmall:"), "abc"_ns));
  EXPECT_FALSE(kbxPerformBOOLSelector(recorder, SEL("isSmall:"), "abcd"_ns));
  EXPECT_FALSE(kbxPerformBOOLSelector(recorder, SEL("isSmall:"), nullptr));
  EXPECT_FALSE(kbxPerformBOOLSelector(recorder, SEL("isSmall:"))) << "its argument is absent";
  EXPECT_FALSE(kbxPerformBOOLSelector(recorder, SEL("nothing"))) << "false without a result";
}

TEST(NSObjectKBXInvocations, ACodeIsAnswered) {
  auto recorder = Recorder::make();
  EXPECT_EQ(kbxPerformOSTypeSelector(recorder, SEL("creator")), kCode);
}

TEST(NSObjectKBXInvocations, WithoutAResultTheCodeIsUnin) {
  auto recorder = Recorder::make();
  EXPECT_EQ(kbxPerformOSTypeSelector(recorder, SEL("nothing")), 0x556E696Eu);
}

TEST(NSObjectKBXInvocations, AValueIsHandedOver) {
  auto recorder = Recorder::make();
  kbxPerformVoidSelectorWithBool(recorder, SEL("setFlag:"), true);
  kbxPerformVoidSelectorWithBool(recorder, SEL("setFlag:"), false);
  kbxPerformVoidSelectorWithOSType(recorder, SEL("setCode:"), 0xFFFFFFFF);
  kbxPerformVoidSelectorWithLongLong(recorder, SEL("setNumber:"), -0x7FFFFFFFFFFFFFFF);
  EXPECT_EQ(recorder->seen, "YES;NO;4294967295;-9223372036854775807;");
}

TEST(NSObjectKBXInvocations, TheResultOfAMethodWithAValueIsDropped) {
  auto recorder = Recorder::make();
  kbxPerformVoidSelectorWithLongLong(recorder, SEL("long:"), 5);
  kbxPerformVoidSelectorWithBool(recorder, SEL("nothing"), true);
  EXPECT_EQ(recorder->calls, 1) << "a method without arguments gets none";
}

TEST(NSObjectKBXInvocations, WhatDoesNotFitRaisesWithoutACall) {
  auto recorder = Recorder::make();
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformBOOLSelector(recorder, SEL("creator")); }), kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformBOOLSelector(recorder, SEL("doubled:"), "a"_ns); }),
            kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformOSTypeSelector(recorder, SEL("wideLong:")); }), kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformVoidSelectorWithBool(recorder, SEL("setCode:"), true); }),
            kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformVoidSelectorWithOSType(recorder, SEL("setNumber:"), 1); }),
            kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxPerformVoidSelectorWithLongLong(recorder, SEL("rect:"), 1); }),
            kInvalid);
  EXPECT_EQ(recorder->seen, "");
}

TEST(NSObjectKBXInvocations, AnAbsentReceiverAnswersNothing) {
  std::uint64_t untouched = 7;
  kbxGetReturnValue(nullptr, &untouched, SEL("creator"), {});
  EXPECT_EQ(untouched, 7u);
  EXPECT_FALSE(kbxPerformBOOLSelector(nullptr, SEL("isReady")));
  EXPECT_EQ(kbxPerformOSTypeSelector(nullptr, SEL("creator")), 0u);
  kbxPerformVoidSelectorWithBool(nullptr, SEL("setFlag:"), true);
  kbxDo(nullptr, SEL("add:"), NSArray::arrayWithObjects({"a"_ns}));
  EXPECT_EQ(kbxCollect(nullptr, SEL("doubled:"), NSArray::arrayWithObjects({"a"_ns})), nullptr);
}

// ---- Many members ------------------------------------------------------------------------

TEST(NSObjectKBXInvocations, EachMemberIsHandedOverInItsOrder) {
  auto recorder = Recorder::make();
  kbxDo(recorder, SEL("add:"), NSArray::arrayWithObjects({"b"_ns, "a"_ns, "b"_ns}));
  kbxDo(recorder, SEL("add:"), NSDictionary::dictionaryWithPairs({{"key"_ns, "value"_ns}}));
  kbxDo(recorder, SEL("add:"), NSArray::array());
  kbxDo(recorder, SEL("add:"), nullptr);
  EXPECT_EQ(recorder->seen, "b;a;b;key;");
}

TEST(NSObjectKBXInvocations, AResultThatIsNoObjectIsNoMatterWhereItIsNotCollected) {
  auto recorder = Recorder::make();
  kbxDo(recorder, SEL("isSmall:"), NSArray::arrayWithObjects({"a"_ns}));
  kbxDo(recorder, SEL("doubled:"), NSArray::arrayWithObjects({""_ns}));
  EXPECT_EQ(recorder->seen, ";");
}

TEST(NSObjectKBXInvocations, ResultsAreCollectedInTheOrderOfTheMembers) {
  auto recorder = Recorder::make();
  auto results = kbxCollect(recorder, SEL("doubled:"), NSArray::arrayWithObjects({"b"_ns, "a"_ns}));
  EXPECT_TRUE(isEqual(results, NSArray::arrayWithObjects({"bb"_ns, "aa"_ns})));
  EXPECT_TRUE(isEqual(kbxCollect(recorder, SEL("doubled:"), NSArray::array()), NSArray::array()));
  EXPECT_TRUE(isEqual(kbxCollect(recorder, SEL("doubled:"), nullptr), NSArray::array()));
}

TEST(NSObjectKBXInvocations, ACallThatAnswersNoObjectCannotBeCollected) {
  auto recorder = Recorder::make();
  auto words = NSArray::arrayWithObjects({"a"_ns, ""_ns, "b"_ns});
  EXPECT_EQ(nameRaisedBy([&] { kbxCollect(recorder, SEL("doubled:"), words); }), kInvalid);
  EXPECT_EQ(recorder->seen, "a;;") << "no further call";
  EXPECT_EQ(nameRaisedBy([&] { kbxCollect(recorder, SEL("isSmall:"), words); }), kInvalid);
}

TEST(NSObjectKBXInvocations, ACollectionThatChangesMeanwhileRaises) {
  auto recorder = Recorder::make();
  for (auto call : {+[](Recorder* one) { kbxDo(one, SEL("grow:"), one->growing); },
                    +[](Recorder* one) { kbxCollect(one, SEL("growAndAnswer:"), one->growing); }}) {
    recorder->growing = NSMutableArray::array();
    recorder->growing->addObject("a"_ns);
    recorder->growing->addObject("b"_ns);
    EXPECT_EQ(nameRaisedBy([&] { call(recorder); }), "NSGenericException");
    EXPECT_EQ(recorder->growing->count(), 3u) << "at the second member";
  }
}

TEST(NSObjectKBXInvocations, WhatIsNoCollectionOrNotAnsweredRaises) {
  auto recorder = Recorder::make();
  EXPECT_EQ(nameRaisedBy([&] { kbxDo(recorder, SEL("add:"), "text"_ns); }), kInvalid);
  EXPECT_EQ(nameRaisedBy([&] { kbxCollect(recorder, SEL("add:"), "text"_ns); }), kInvalid);
  EXPECT_EQ(
      nameRaisedBy([&] { kbxDo(recorder, SEL("absent:"), NSArray::arrayWithObjects({"a"_ns})); }),
      kInvalid);
  kbxDo(recorder, SEL("absent:"), NSArray::array());
}

}  // namespace
}  // namespace kbx
