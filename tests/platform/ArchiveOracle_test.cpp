// Keyed archives against Python's reader and writer of binary lists, where there is a Python.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/archives/NSKeyedArchiver.h"
#include "platform/archives/NSKeyedUnarchiver.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSNull.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using namespace test;

// Reads an archive by what is publicly known of the format.
constexpr char kReader[] = R"py(
import plistlib, sys
from datetime import datetime, timedelta
archive = plistlib.load(open(sys.argv[1] + "/archive", "rb"))
assert archive["$archiver"] == "NSKeyedArchiver" and archive["$version"] == 100000
objects = archive["$objects"]
assert objects[0] == "$null"

def classes(value):
    named = objects[value["$class"].data]
    assert named["$classes"][0] == named["$classname"] and named["$classes"][-1] == "NSObject"
    return named["$classes"]

def at(reference):
    value = objects[reference.data]
    if not isinstance(value, dict): return value
    kinds = classes(value)
    if "NSArray" in kinds: return [at(one) for one in value["NS.objects"]]
    if "NSDictionary" in kinds:
        return dict(zip(map(at, value["NS.keys"]), map(at, value["NS.objects"])))
    if "NSData" in kinds: return value["NS.data"]
    if "NSDate" in kinds: return datetime(2001, 1, 1) + timedelta(seconds=value["NS.time"])
    if "NSNull" in kinds: return None
    if "NSURL" in kinds:
        assert value["NS.base"].data == 0
        return at(value["NS.relative"])
    if "NSError" in kinds:
        return (at(value["NSDomain"]), value["NSCode"], at(value["NSUserInfo"]))
    raise AssertionError(kinds)

root = at(archive["$top"]["root"])
expected = ["text", "é日本😀", True, -5, 2**64 - 1, 0.5, b"bytes", b"more", [[], ["a"]],
            {"a": 1, "b": None}, "file:///tmp/a%20b", datetime(2001, 1, 2), ("D", -7, {"k": "v"})]
assert root == expected, root
mutable = objects[archive["$top"]["root"].data]["NS.objects"]
assert classes(objects[mutable[7].data]) == ["NSMutableData", "NSData", "NSObject"]
assert classes(objects[mutable[8].data]) == ["NSMutableArray", "NSArray", "NSObject"]
)py";

// Writes an archive as others do: classes behind their objects, hints, an old form of text.
constexpr char kWriter[] = R"py(
import plistlib, sys
UID = plistlib.UID
objects = ["$null"]
def add(value):
    objects.append(value)
    return UID(len(objects) - 1)
def kind(*names):
    return add({"$classname": names[0], "$classes": list(names) + ["NSObject"],
                "$classhints": ["NSUnknown"]})
root = add({})
text, number = add("text é"), add(7)
array, info = kind("NSMutableArray", "NSArray"), kind("NSDictionary")
url, error, null = kind("NSURL"), kind("NSError"), kind("NSNull")
old = add({"NS.string": "old", "$class": kind("NSMutableString", "NSString")})
date = add({"NS.time": 86400.0, "$class": kind("NSDate")})
data = add({"NS.data": b"bytes", "$class": kind("NSMutableData", "NSData")})
place = add({"NS.base": UID(0), "NS.relative": add("file:///tmp/a%20b"), "$class": url})
entries = add({"NS.keys": [text], "NS.objects": [root], "$class": info})
failure = add({"NSDomain": text, "NSCode": -7, "NSUserInfo": entries, "$class": error})
objects[root.data] = {"$class": array, "NS.objects": [
    text, number, old, date, data, place, entries, failure, add({"$class": null}), text]}
plistlib.dump({"$archiver": "NSKeyedArchiver", "$version": 100000, "$objects": objects,
               "$top": {"root": root}}, open(sys.argv[1] + "/archive", "wb"),
              fmt=plistlib.FMT_BINARY)
)py";

class ArchiveOracle : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("python3 -c 'import plistlib; plistlib.UID' >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "there is no python3 with plistlib";
  }
  int run(const char* script) const {
    _folder.write("script.py", script);
    const std::string path = (_folder / "script.py").string();
    return std::system(("python3 '" + path + "' '" + _folder.path().string() + "'").c_str());
  }

  const TemporaryFolder _folder;
};

TEST_F(ArchiveOracle, PythonReadsTheSameObjects) {
  auto list = NSMutableArray::array();
  list->addObject(NSArray::array());
  list->addObject(NSArray::arrayWithObjects({"a"_ns}));
  auto root = NSArray::arrayWithObjects(
      {"text"_ns, string("é日本😀").get(), NSNumber::numberWithBool(true).get(),
       NSNumber::numberWithInteger(-5).get(),
       NSNumber::numberWithUnsignedInteger(0xFFFFFFFFFFFFFFFF).get(),
       NSNumber::numberWithDouble(0.5).get(), data("bytes").get(),
       data("more")->mutableCopy().get(), list.get(),
       NSDictionary::dictionaryWithPairs(
           {{"a"_ns, NSNumber::numberWithInteger(1)}, {"b"_ns, NSNull::null()}})
           .get(),
       NSURL::fileURLWithPath("/tmp/a b"_ns, false).get(),
       NSDate::dateWithTimeIntervalSinceReferenceDate(86400).get(),
       NSError::errorWithDomain("D"_ns, -7, NSDictionary::dictionaryWithPairs({{"k"_ns, "v"_ns}}))
           .get()});
  _folder.write("archive", NSKeyedArchiver::archivedDataWithRootObject(root)->view());
  EXPECT_EQ(run(kReader), 0);
}

TEST_F(ArchiveOracle, WhatPythonWroteIsRead) {
  ASSERT_EQ(run(kWriter), 0);
  Ref<NSError> error;
  Ref<NSObject> root =
      NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data(_folder.read("archive")), &error);
  ASSERT_TRUE(root) << text(error);
  Ref<NSMutableArray> list = cast<NSMutableArray>(root);
  ASSERT_TRUE(list);
  ASSERT_EQ(list->count(), 10u);
  EXPECT_EQ(text(list->objectAtIndex(0)), "text é");
  EXPECT_TRUE(isEqual(list->objectAtIndex(1), NSNumber::numberWithInteger(7)));
  EXPECT_EQ(text(list->objectAtIndex(2)), "old");
  EXPECT_TRUE(
      isEqual(list->objectAtIndex(3), NSDate::dateWithTimeIntervalSinceReferenceDate(86400)));
  EXPECT_EQ(text(cast<NSMutableData>(list->objectAtIndex(4))), "bytes");
  EXPECT_EQ(text(list->objectAtIndex(5)), "file:///tmp/a%20b");
  auto* entries = cast<NSDictionary>(list->objectAtIndex(6));
  ASSERT_TRUE(entries);
  EXPECT_TRUE(isSame(entries->objectForKey(string("text é")), list)) << "back to the root";
  auto* failure = cast<NSError>(list->objectAtIndex(7));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code(), -7);
  EXPECT_TRUE(isSame(failure->userInfo(), entries));
  EXPECT_TRUE(isSame(list->objectAtIndex(8), NSNull::null()));
  EXPECT_TRUE(isSame(list->objectAtIndex(9), list->objectAtIndex(0)));
  list->removeAllObjects();  // it holds itself
}

}  // namespace
}  // namespace kbx
