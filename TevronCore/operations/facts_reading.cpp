#include "operations/facts_reading.h"

#include <utility>

#include "operations/maintenance.h"

FactsReading::FactsReading(std::shared_ptr<kavel::lidar::CommandSender> sender,
                           const LinkState& state, int connect_type,
                           std::shared_ptr<UserReport> report,
                           std::function<void(DeviceFacts)> done)
    : thread_([sender = std::move(sender), &state, connect_type, report = std::move(report),
               done = std::move(done)] {
        done(Maintenance({sender.get(), state, connect_type}, *report).ReadFacts());
      }) {}

FactsReading::~FactsReading() { thread_.join(); }
