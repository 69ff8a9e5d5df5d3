#include "NSProcessInfo+KBX.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

#include "Assertions.h"
#include "platform/system/ProcessIdentity.h"
#include "platform/system/SystemControl.h"

namespace kbx {
namespace {

constexpr const char* kFile = "KBXFoundation/Source/NSProcessInfo+KBX";
constexpr const char* kListFunction = "int GetBSDProcessList(kinfo_proc **, size_t *)";

struct Free {
  void operator()(void* block) const noexcept { std::free(block); }
};
using Records = std::unique_ptr<kinfo_proc[], Free>;

/// 0 or an errno value.
int askForList(kinfo_proc* records, std::size_t* size) {
  const auto user = static_cast<int>(ProcessIdentity::current().realUserIdentifier());
  const int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_RUID, user};
  return sysctl(name, 4, records, size, nullptr, 0) == -1 ? errno : 0;
}

/// Absent when there is no such room, and for sizes that no room ever has.
Records allocate(std::size_t size) {
  if (size > PTRDIFF_MAX) return nullptr;
  return Records(static_cast<kinfo_proc*>(std::malloc(size ? size : 1)));
}

/// One attempt: asks for the size, then for the list. 0 or an errno value; *isListGrowing when it
/// did not fit any more. Only there is a lack of memory a reason to begin again.
int fetchList(Records& records, std::size_t* size, bool* isListGrowing) {
  if (const int error = askForList(nullptr, size); error != 0) return error;
  records = allocate(*size);
  if (!records) return ENOMEM;
  const int error = askForList(records.get(), size);
  *isListGrowing = error == ENOMEM;
  if (error != 0) records.reset();
  return error;
}

/// The processes of the real user: 0, the records and their count, or an errno value.
int GetBSDProcessList(Records& records, std::size_t* count) {
  std::size_t size = 0;
  int error = 0;
  bool isListGrowing = false;
  do {
    KBX_PARAMETER_ASSERT(!records, "result == NULL", Site(kFile, 236, kListFunction));
    isListGrowing = false;
    error = fetchList(records, &size, &isListGrowing);
  } while (isListGrowing);
  *count = error == 0 ? size / sizeof(kinfo_proc) : 0;
  KBX_PARAMETER_ASSERT((error == 0) == (records != nullptr), "(err == 0) == (*procList != NULL)",
                       Site(kFile, 290, kListFunction));
  return error;
}

std::string_view nameOf(const kinfo_proc& record) {
  const char* end = std::find(std::begin(record.p_comm), std::end(record.p_comm), '\0');
  return {record.p_comm, static_cast<std::size_t>(end - record.p_comm)};
}

}  // namespace

bool kbxIsBSDProcessRunning(NSString* name) {
  Records records;
  std::size_t count = 0;
  const int error = GetBSDProcessList(records, &count);
  KBX_PARAMETER_ASSERT(error == 0, "err == 0",
                       Site(kFile, 300, "+[NSProcessInfo(KBX) kbxIsBSDProcessRunning:]"));
  const auto wanted = name ? name->UTF8String() : std::nullopt;
  const auto hasName = [&wanted](const kinfo_proc& record) { return nameOf(record) == *wanted; };
  const std::span list(records.get(), count);
  return wanted && std::any_of(list.begin(), list.end(), hasName);
}

}  // namespace kbx
