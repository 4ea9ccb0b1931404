/// Gives views their frames: stacks, constraints and sizes of content, as the platform's layout does.
///
/// One axis after the other, first the horizontal one, since a wrapped text is as high as its width makes it. Views
/// that no stack and no constraint places keep the frame that was set.
#pragma once

#include "desktop/appkit/View.hpp"

namespace desktop {

/// Places everything inside the view, which keeps its own frame. Takes linear time for rows in stacks.
void layOut(View& view);
/// The least length at which everything inside has the room that it wants; none when nothing asks for any.
std::optional<double> fittingLength(View& view, Axis axis);

/// Whether y runs downwards in the view: asked by message, since the program's own views answer too.
bool isFlipped(View& view);
/// Where the view is, from the top left corner of its window's content; y runs downwards.
CGRect frameFromTop(View& view);

} // namespace desktop
