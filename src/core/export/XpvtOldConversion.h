#pragma once

#include "export/PipelineConversion.h"

#include <utility>

namespace ZDTAnalyzer {

// The exports of process value traces of schema 7.01.
class XpvtOldConversion final : public PipelineConversion {
public:
    explicit XpvtOldConversion(ConversionSettings settings)
        : PipelineConversion(ConversionKind::Xpvt701, std::move(settings)) {}
};

} // namespace ZDTAnalyzer
