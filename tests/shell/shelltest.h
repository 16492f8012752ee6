#pragma once

// The tool window's tests: windows on files, modal windows answered, the user's settings in a sandbox.
#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace kesu::toolvok;
using namespace toolfixture;
