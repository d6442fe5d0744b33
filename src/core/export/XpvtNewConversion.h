#pragma once

#include "export/PipelineConversion.h"

#include <utility>

namespace ZDTAnalyzer {

// The exports of process value traces of schema 7.02.
class XpvtNewConversion final : public PipelineConversion {
public:
    explicit XpvtNewConversion(ConversionSettings settings)
        : PipelineConversion(ConversionKind::Xpvt702, std::move(settings)) {}
};

} // namespace ZDTAnalyzer
