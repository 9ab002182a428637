#include "widgets/CurvePicture.h"

#include <filesystem>

#include "shell/Failure.h"
#include "shell/Shell.h"
#include "text/Case.h"
#include "text/TextFile.h"
#include "widgets/CurveView.h"

namespace hylden {

void SaveCurvePicture(Shell& shell, const CurveView& curves, const std::string& path) {
  const std::string ending = LowerCase(std::filesystem::path(path).extension().string());
  if (!ending.empty() && ending != ".png" && ending != ".svg" && ending != ".pdf")
    return shell.dialogs.Tell("Curves are saved as .png, .svg or .pdf:\r\n" + path);
  const Done saved = Trapped("CurveView.Picture", path, [&] { ReplaceFile(path, curves.PictureFor(path)); });
  if (shell.Ok(saved)) shell.Saved(path);
}

}  // namespace hylden
