/// How everything in a picture looks, in the light and in the dark appearance.
#pragma once

#include <string>

namespace desktop {

/// The elements at a picture's beginning: a style sheet with the classes, and the wallpaper's colours. The viewer's
/// appearance decides which of each class's two colours is seen.
std::string styleElements();

} // namespace desktop
