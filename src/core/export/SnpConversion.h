#pragma once

#include "export/PipelineConversion.h"

#include <utility>

namespace ZDTAnalyzer {

// The exports of snapshot files.
class SnpConversion final : public PipelineConversion {
public:
    explicit SnpConversion(ConversionSettings settings)
        : PipelineConversion(ConversionKind::Snapshot, std::move(settings)) {}
};

} // namespace ZDTAnalyzer
