#pragma once

#include <string>

namespace hylden {

class CurveView;
class Shell;

/// Saves curves as the kind of picture that the file's ending names, and tells so, or why not.
void SaveCurvePicture(Shell& shell, const CurveView& curves, const std::string& path);

}  // namespace hylden
