/// What the command tells of itself.
#pragma once

#include <string>
#include <string_view>

namespace desktop {

/// An option of the command `tarnwick`, and what its help and its pages say of it.
struct Option {
  std::string_view name;
  std::string_view argument; ///< empty where it takes none
  std::string_view purpose;

  /// `--defaults FILE`
  std::string usage() const { return std::string(name) + (argument.empty() ? "" : " ") + std::string(argument); }
};

inline constexpr Option traceOption{
    "--trace", "", "tell what happens as one line per entry, for tests and scripts, instead of in sentences"};
inline constexpr Option defaultsOption{
    "--defaults", "FILE", "the property list that holds the user's defaults; without it they are kept in memory"};
inline constexpr Option bundleOption{
    "--bundle", "DIR", "the application bundle; without it the one that the build put beside the command"};
inline constexpr Option helpOption{"--help", "", "tell options, commands and the names of keys"};
inline constexpr Option versionOption{"--version", "", "tell the version"};
inline constexpr Option options[] = {traceOption, defaultsOption, bundleOption, helpOption, versionOption};

/// `tarnwick 1.0.0`
std::string versionText();
/// For `--help`: how the command is called, then the same as promptHelp().
std::string commandHelp();
/// All commands and the names of keys.
std::string promptHelp();

} // namespace desktop
