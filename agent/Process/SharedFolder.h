// Outputs in folders that everybody can write to, such as /tmp.
//
// Whoever else may write to a folder can put a link there, under the name of an output, before the
// program comes. Through it the program would replace, or create, a file that the link's owner may
// not touch. A file of somebody else under that name can be read and changed by its owner while the
// program writes to it. So the program takes no such link, file or folder: on the way to an output,
// each name in a folder that everybody can write to must belong to the caller, or to the owner of
// that folder. Some kernels have the same rule (fs.protected_symlinks, fs.protected_regular); it is
// switched off on others, and in most containers.
//
// A name can change behind the check. A file that is opened by its name is therefore opened with
// the flags that flagsToOpen() returns: no link is followed then.
#pragma once

#include <filesystem>

namespace Process {

// Throws Story::InputError, which names the place and the remedy, when a part of the path belongs
// to somebody else in a folder that everybody can write to.
void refuseForeign( std::filesystem::path const & output );

// The same; returns O_NOFOLLOW for a name in a folder that everybody can write to, and else 0.
int flagsToOpen( std::filesystem::path const & output );

}  // namespace Process
