#pragma once

// The tool window's tests: windows on files, modal windows answered, the user's settings in a sandbox.
#include "datatable.h"
#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QtTest>
#include <QtWidgets>

using namespace kesu::toolvok;
using namespace toolfixture;
