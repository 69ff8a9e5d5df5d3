// MessageNames: which files are messages, by their names and by the folders that they lie in.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// Whether the name ends in ".eml" or ".emlx", in either case; so ".partial.emlx" counts.
bool isMessageName(std::string_view name);

/// Whether files are messages there whatever they are called: the path is that of "cur" or "new",
/// beside at least one more of the three folders of a Maildir, "cur", "new" and "tmp". Empty ones
/// are often lost when mail is copied, so two are enough.
bool isMaildirFolder(const std::string& path);

/// Whether a file in such a folder is a message for that reason alone: its name says nothing, and
/// is none of the hidden ones, in which mail servers keep lists.
bool isMaildirMessageName(std::string_view name);

/// Both for the path of a file.
bool isMaildirMessage(const std::string& path);

}  // namespace kbx
