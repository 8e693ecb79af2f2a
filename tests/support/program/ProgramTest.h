#pragma once

#include "tests/support/program/Program.h"

#include <gtest/gtest.h>

namespace tarn::test {

// A program of each case's own.
class ProgramTest : public testing::Test, protected Program {};

}  // namespace tarn::test
