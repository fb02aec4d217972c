// InstructionSets.h -- runs a test once for each instruction set that the processor has and the kernels know
#pragma once

#include "platform/BaseTypes.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <string>

// While one stands, the kernels are those of this instruction set alone.
class InstructionSet : public testing::TestWithParam<int64_t> {
  protected:
    void SetUp() override
    {
        Choose(GetParam());
    }
    void TearDown() override
    {
        Choose(0);
    }

  private:
    static void Choose(int64_t qwTarget)
    {
        hwy::SetSupportedTargetsForTest(qwTarget);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

inline std::string InstructionSetName(const testing::TestParamInfo<int64_t> &info)
{
    return hwy::TargetName(info.param);
}

#define FOR_EVERY_INSTRUCTION_SET(suite)                                                                               \
    INSTANTIATE_TEST_SUITE_P(On, suite, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), InstructionSetName)
