#pragma once

#include <string>
#include <string_view>
#include <vector>

// What the local sources ask of the file system. Paths are bytes with "/" as separator.
namespace tremor {

// A subfolder of the folder that a local source reads.
struct FolderEntry {
    std::string
        Name; // FullPath behind the path as it was given: "ev1" below "/a/", "/ev1" below "/a"
    std::string FullPath;
    std::string LastFile; // filled by the SeisComP reader
};

// `folder` and `name` with one separator between them.
std::string joinPath(std::string_view folder, std::string_view name);

// The names of the subfolders, and of the regular files, of a folder: in the order of their
// letters whatever their case, without those that begin with ".". Links count as what they lead
// to; a link that leads nowhere, a pipe, a socket or a device is in neither list. Error 70 without
// the right to look, 76 when the folder is not there, 75 otherwise.
std::vector<std::string> listFolders(const std::string& path);
std::vector<std::string> listFiles(const std::string& path);

// Renames a file or folder in one step. A file of the new name is replaced; there is no moment at
// which neither stands. Errors 70, 75 and 76 as above, 61 for a full disk; the old name stands
// then.
void renameReplacing(const std::string& from, const std::string& to);

// The same, but false, with nothing changed, when the new name is taken or the system refuses.
bool renameUnlessTaken(const std::string& from, const std::string& to);

// Local time of the last change as "YYYY-MM-DD HH:mm:ss"; empty when there is no such file or its
// year lies outside 0 to 9999.
std::string fileDateText(const std::string& path);

} // namespace tremor
