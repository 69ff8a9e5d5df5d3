#include "host/results/RawValues.h"

#include <utility>

#include "platform/objects/NSArray.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

class RawValues final : public Results {
 public:
  RawValues(Output& output, std::vector<std::string> names, std::string nullMarker)
      : _output(output), _names(std::move(names)), _nullMarker(std::move(nullMarker)) {}

  void delivered(const std::string&, NSDictionary* attributes) override {
    for (const std::string& name : _names)
      value(attributes->objectForKey(NSString::stringWithLossyUTF8(name)));
  }
  void failed(const std::string&, NSError*) override {
    for (std::size_t i = 0; i < _names.size(); ++i) value(nullptr);
  }

 private:
  void value(NSObject* value) {
    auto* array = cast<NSArray>(value);
    if (array)
      elements(array);
    else if (value)
      text(value);
    else
      _output.write(_nullMarker);
    _output.write('\0');
  }

  void elements(NSArray* array) {
    bool isFirst = true;
    for (const auto& element : *array) {
      if (!std::exchange(isFirst, false)) _output.write('\n');
      text(element);
    }
  }

  void text(NSObject* value) {
    std::string bytes = descriptionOf(value)->lossyUTF8();
    std::erase(bytes, '\0');
    _output.write(bytes);
  }

  Output& _output;
  const std::vector<std::string> _names;
  const std::string _nullMarker;
};

}  // namespace

std::unique_ptr<Results> makeRawValues(Output& output, std::vector<std::string> names,
                                       std::string nullMarker) {
  return std::make_unique<RawValues>(output, std::move(names), std::move(nullMarker));
}

}  // namespace kbx
