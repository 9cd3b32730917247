#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ui/Controls.h"
#include "ui/Toolkit.h"

namespace vesko {

// What the platform's own file beside this one gives to the tests.

/// A control as its window shows it.
struct Shown {
  Rect place;  // within the window's contents, in device pixels
  bool visible = false;
  bool enabled = false;
  Text text;     // caption or text; the mnemonic's "&" stays where the system keeps it
  Text tooltip;  // plain
  Font font;
};

/// One at a time.
std::unique_ptr<Toolkit> MakeTestToolkit();

Shown LookAt(const Control& control);
std::vector<int> ColumnWidths(const ListView& list);

/// The user pastes a text before the last character of a box of one line.
void PasteBeforeLast(const TextBox& box, const Text& text);

/// The native window that holds the control: its caption and, in device pixels, its bounds.
bool WindowIsShown(const Control& control);
Text CaptionOfWindow(const Control& control);
Rect BoundsOfWindow(const Control& control);
void MoveWindowOf(const Control& control, const Rect& bounds);

/// The name of a font face that the system has, other than its usual one.
Text SomeFontFace();

/// Runs a step as soon as a loop delivers events, including that of a native box.
void Soon(std::function<void()> step);

/// The user presses the button of the box on top.
void CloseBox();

/// Number of native windows, hidden ones included, that the toolkit has not destroyed.
int NativeWindows();

}  // namespace vesko
