// TestMail: stands in for the system's mail importer. Reads .emlx files as written by the driver.
//
// The header X-Test of a message asks for something else than subject and text: html-only, no-text,
// and after the subject raise, throw (a foreign exception), fail, or something worse (Misdeeds.h).
#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Instance.h"
#include "Misdeeds.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSException.h"
#include "platform/plugins/Bridge.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

using namespace kbx;

namespace {

Ref<NSString> string(std::string_view text) { return NSString::stringWithLossyUTF8(text); }

/// The message in an .emlx file; absent, with what is wrong, when the layout is another.
Ref<NSData> messageOf(NSData* file, std::string* fault) {
  const char* start = reinterpret_cast<const char*>(file->bytes());
  const char* end = start + file->length();
  std::size_t length = 0;
  auto [at, failure] = std::from_chars(start, end, length);
  if (failure != std::errc() || at == end || *at != '\n') return *fault = "count line", nullptr;
  const auto first = static_cast<std::size_t>(at + 1 - start);
  if (length > file->length() - first) return *fault = "count", nullptr;
  auto properties = file->subdataWithRange({first + length, file->length() - first - length});
  Ref<NSObject> list = NSPropertyListSerialization::propertyListWithData(
      properties, NSPropertyListImmutable, nullptr, nullptr);
  if (!cast<NSDictionary>(list)) return *fault = "property list", nullptr;
  return file->subdataWithRange({first, length});
}

/// The value of a header line; empty without one.
std::string_view header(std::string_view message, std::string_view name) {
  std::string_view head = message.substr(0, message.find("\n\n"));
  for (std::size_t at = 0; at < head.size();) {
    std::size_t end = std::min(head.find('\n', at), head.size());
    std::string_view line = head.substr(at, end - at);
    if (line.starts_with(name)) return line.substr(name.size());
    at = end + 1;
  }
  return {};
}

std::string_view body(std::string_view message) {
  const std::size_t blankLine = message.find("\n\n");
  return blankLine == std::string_view::npos ? "" : message.substr(blankLine + 2);
}

Boolean importMessage(NSMutableDictionary* attributes, std::string_view message) {
  attributes->setObjectForKey(string(header(message, "Subject: ")), "kMDItemSubject"_ns);
  const std::string_view test = header(message, "X-Test: ");
  if (test == "raise")
    NSException::exceptionWithName("TestMail"_ns, "the message asks for it"_ns, nullptr)->raise();
  if (test == "throw") throw std::runtime_error("the message asks for it");
  if (test == "fail") return false;
  if (test == "no-text") return true;
  doMisdeed(test, attributes);
  attributes->setObjectForKey(
      string(body(message)), fromCF(test == "html-only" ? kMDItemHTMLContent : kMDItemTextContent));
  return true;
}

Boolean import(void*, CFMutableDictionaryRef attributes, CFStringRef contentType, CFURLRef url) {
  NSMutableDictionary* target = fromCF(attributes);
  if (contentType) target->setObjectForKey(fromCF(contentType), "TestMailContentType"_ns);
  target->setObjectForKey(fromCF(url)->path(), "TestMailPath"_ns);
  Ref<NSData> file = NSData::dataWithContentsOfURL(fromCF(url), NSDataReadingNone, nullptr);
  std::string fault = "file";
  Ref<NSData> message = file ? messageOf(file, &fault) : nullptr;
  if (message) return importMessage(target, message->view());
  target->setObjectForKey(string(fault), "TestMailFault"_ns);
  return false;
}

}  // namespace

TEST_BUNDLE_EXPORT void* TestMailFactory(CFAllocatorRef, CFUUIDRef type) {
  if (!CFEqual(type, kMDImporterTypeID)) return nullptr;
  CFUUIDRef factory =
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("E1A35C08-6A77-4C2B-9D3E-0C9E3B1B6D04"));
  return makeInstance(factory, import);
}
