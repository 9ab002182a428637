#pragma once

#include <qcustomplot.h>

namespace hylden {

/// Where a logarithmic frequency axis has its numbers: at the decades, at 1, 2 and 5 where there are few of them, and
/// at round numbers within one.
class FrequencyTicker : public QCPAxisTicker {
 protected:
  QVector<double> createTickVector(double tickStep, const QCPRange& range) override;
  QVector<double> createSubTickVector(int subTickCount, const QVector<double>& ticks) override;

 private:
  double decades_ = 0;
};

}  // namespace hylden
