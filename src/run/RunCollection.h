#pragma once
// A collection item: its members run one after the other as the steps of one job.

struct RunContext;

// Runs the collection item at the schedule's cursor; its members run whatever they are scheduled as,
// and only the collection's own LastRun and log entries tell of the whole.
void RunCollection(RunContext &run);
