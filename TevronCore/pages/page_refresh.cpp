#include "pages/page_refresh.h"

#include <utility>

#include "pages/page_reader.h"

PageRefresh::PageRefresh(std::shared_ptr<kavel::lidar::CommandSender> sender,
                         const LinkState& state, ReadFailures& failures,
                         std::shared_ptr<UserReport> report, View view, Handlers handlers)
    : sender_(std::move(sender)),
      state_(state),
      failures_(failures),
      report_(std::move(report)),
      handlers_(std::move(handlers)),
      view_(std::move(view)),
      thread_([this] { UpdatePagesTimer(); }) {}

PageRefresh::~PageRefresh() {
  stop_.Raise();
  thread_.join();
}

void PageRefresh::SetView(View view) {
  const std::lock_guard lock(mutex_);
  view_ = std::move(view);
}

void PageRefresh::ReadSoon(std::shared_ptr<LidarModel> model, std::vector<const VarInfo*> vars) {
  const std::lock_guard lock(mutex_);
  soon_model_ = std::move(model);
  soon_ = std::move(vars);
}

void PageRefresh::UpdatePagesTimer() {
  int passes = 0;
  while (!stop_.WaitFor(kPassInterval)) {
    ++passes;
    if (!state_.MayRead()) {
      continue;
    }
    CatchUp();
    if (passes >= kPassesPerRead) {
      passes = 0;
      ReadView();
    }
  }
}

void PageRefresh::CatchUp() {
  std::shared_ptr<LidarModel> model;
  std::vector<const VarInfo*> vars;
  {
    const std::lock_guard lock(mutex_);
    model = std::exchange(soon_model_, nullptr);
    vars = std::exchange(soon_, {});
  }
  if (vars.empty()) {
    return;
  }
  Read(*model, vars);
  if (!stop_.IsRaised()) {
    handlers_.caught_up();
  }
}

void PageRefresh::ReadView() {
  View view;
  {
    const std::lock_guard lock(mutex_);
    view = view_;
  }
  Read(*view.model, view.model->pages.VariablesOf(view.page));
  if (!stop_.IsRaised()) {
    handlers_.refreshed();
  }
}

void PageRefresh::Read(const LidarModel& model, const std::vector<const VarInfo*>& vars) {
  PageReader reader(*sender_, *model.table, state_, failures_, *report_);
  reader.Read(vars, "TevronManager::updatePagesTimer");
}
