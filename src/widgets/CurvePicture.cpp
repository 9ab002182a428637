#include "widgets/CurvePicture.h"

#include "shell/Failure.h"
#include "shell/Shell.h"
#include "text/TextFile.h"
#include "widgets/CurveView.h"

namespace hylden {

void SaveCurvePicture(Shell& shell, const CurveView& curves, const std::string& path) {
  const Done saved = Trapped("CurveView.Picture", path, [&] { ReplaceFile(path, curves.PictureFor(path)); });
  if (shell.Ok(saved)) shell.Saved(path);
}

}  // namespace hylden
