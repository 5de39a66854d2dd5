// What the tools need of the platform: the command line, console properties, files by UTF-8 name,
// the end-of-program keys. Texts are UTF-8 on this side.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace tools::console {

// Libraries that are loaded from now on come from the system's folder or the program's, and from
// nowhere else unless their whole path is given.
void TrustOwnFoldersAlone();

std::vector<std::string> CommandLineWords();  // with the program's name first

bool IsConsole(std::FILE* stream);
bool IsElevated();                      // administrator rights are in force
bool HasEnvironment(const char* name);  // set and not empty

// Lets the console of the stream show colours; false when it cannot.
bool EnableColor(std::FILE* stream);

// Cells of a line of the console that the stream is; 0 when it is none.
size_t Width(std::FILE* stream);

// Writes the bytes as they are, to a console as text. False when they did not all go out.
bool Write(std::FILE* stream, const std::string& text);

// One line typed by the user, without its end; false at end of input.
bool ReadLine(std::string* line);

// A new or emptied file for writing, or null with the Windows error code in *error.
std::FILE* CreateForWriting(const std::string& path, uint32_t* error);

// Whether a file of that name can come to be, or be replaced: 0, or the Windows error code.
uint32_t CanBeReplaced(const std::string& path);

// Gives a file the name of another, which it replaces. Waits a moment for readers who keep the
// other open. A Windows error code, or 0.
uint32_t Replace(const std::string& from, const std::string& to);

void Remove(const std::string& path);

std::string ToUtf8(const std::wstring& text);
std::wstring ToWide(const std::string& text);

// A path for interfaces that take the system's code page.
std::string ToSystemCodePage(const std::string& text);

// The system's text for a Windows error code, in UTF-8 and without a line end.
std::string SystemErrorText(uint32_t code);

// Makes the folder and those above it that are missing. Returns a Windows error code, or 0.
uint32_t MakeFolder(const std::string& path);

// Calls notify on a thread of its own when the user presses Ctrl-C or Ctrl-Break, or closes the
// window, logs off or shuts down (closing). While notify runs for a closing, the process lives on,
// for about five seconds at most.
void OnInterrupt(void (*notify)(bool closing));

// Ends the process at once, without waiting for its other threads. The library's own unload still
// runs, so that what it shares with other processes is given back.
[[noreturn]] void ExitNow(int code);

}  // namespace tools::console
