// Queries: parsed, planned and complained about. What is offered as a correction must itself have
// another fault, or none.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/search/QueryParser.h"
#include "host/search/SearchPlan.h"

namespace kbx {
namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

int depthOf(const QueryNode& node) {
  int deepest = 0;
  for (const QueryNode& child : node.children) deepest = std::max(deepest, depthOf(child));
  return deepest + 1;
}

void checkShape(const QueryNode& node) {
  const bool isList = node.kind == QueryNode::Kind::And || node.kind == QueryNode::Kind::Or;
  if (isList) require(node.children.size() >= 2);
  if (node.kind == QueryNode::Kind::Not) require(node.children.size() == 1);
  for (const QueryNode& child : node.children) {
    require(!isList || child.kind != node.kind);
    checkShape(child);
  }
}

void checkFault(std::string_view query, const QueryFault& fault) {
  require(fault.begin <= query.size() && fault.length <= query.size() - fault.begin);
  require(fault.correction != query);
  const std::string text = faultText(query, fault);
  for (const char byte : text) require(byte == '\n' || static_cast<unsigned char>(byte) >= ' ');
  require(text.size() < 8000);
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  const std::string_view query(reinterpret_cast<const char*>(bytes), size);
  try {
    const QueryNode node = parseQuery(query);
    require(depthOf(node) <= 3 * kDeepestQuery);
    checkShape(node);
    require(descriptionOf(node) == descriptionOf(parseQuery(query)));
    const SearchPlan plan(node);
    require(!plan.condition().empty());
    require(plan.matches().size() <= kMostTerms);
  } catch (const QueryFault& fault) {
    checkFault(query, fault);
  }
  return 0;
}
