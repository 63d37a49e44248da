#pragma once
// Every quillo-cli command is one function with a one-line usage text.
#include "app/cli/CliOptions.h"

struct CliCommand {
    const char* name;
    const char* usage;
    const char* summary;
    int (*run)(CliContext& context);
};

int runList(CliContext& context);
int runRender(CliContext& context);
int runPlay(CliContext& context);
int runImport(CliContext& context);
int runPrintLoops(CliContext& context);
int runPlayFile(CliContext& context);
int runRecord(CliContext& context);
int runTrim(CliContext& context);
int runExport(CliContext& context);
