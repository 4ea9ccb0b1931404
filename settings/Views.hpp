/// Views that several places of the settings window are made of.
#pragma once

#include "platform/Control.hpp"

#include <initializer_list>

namespace tarnwick {

inline platform::NSStackView makeColumn(platform::NSInteger alignment, CGFloat spacing) {
  auto column = platform::NSStackView::make();
  column.setOrientation(platform::NSUserInterfaceLayoutOrientationVertical);
  column.setAlignment(alignment);
  column.setSpacing(spacing);
  return column;
}

inline platform::NSStackView makeRow(std::initializer_list<platform::NSView> views) {
  auto row = platform::NSStackView::make();
  row.setOrientation(platform::NSUserInterfaceLayoutOrientationHorizontal);
  row.setAlignment(platform::NSLayoutAttributeCenterY);
  row.setSpacing(8);
  for (const platform::NSView& view : views)
    row.addArrangedSubview(view);
  return row;
}

inline platform::NSTextField makeSecondaryLabel(const platform::NSString& text) {
  auto label = platform::NSTextField::labelWithString(text);
  label.setTextColor(platform::NSColor::secondaryLabelColor());
  return label;
}

} // namespace tarnwick
