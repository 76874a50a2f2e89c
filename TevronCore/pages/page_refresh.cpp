#include "pages/page_refresh.h"

#include <utility>

#include "pages/page_reader.h"

PageRefresh::PageRefresh(std::shared_ptr<kavel::lidar::CommandSender> sender,
                         const LinkState& state, std::shared_ptr<UserReport> report, View view,
                         std::function<void()> on_refreshed)
    : sender_(std::move(sender)),
      state_(state),
      report_(std::move(report)),
      on_refreshed_(std::move(on_refreshed)),
      view_(std::move(view)),
      thread_([this] { UpdatePagesTimer(); }) {}

PageRefresh::~PageRefresh() {
  stop_.Raise();
  thread_.join();
}

void PageRefresh::SetView(View view) {
  const std::lock_guard<std::mutex> lock(mutex_);
  view_ = std::move(view);
}

void PageRefresh::UpdatePagesTimer() {
  int passes = 0;
  while (!stop_.WaitFor(kPassInterval)) {
    ++passes;
    if (!state_.MayRead() || passes < kPassesPerRead) {
      continue;
    }
    passes = 0;
    ReadView();
  }
}

void PageRefresh::ReadView() {
  View view;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    view = view_;
  }
  PageReader reader(*sender_, *view.model->table, state_, *report_);
  reader.Read(view.model->pages.VariablesOf(view.page), "TevronManager::updatePagesTimer");
  if (!stop_.IsRaised()) {
    on_refreshed_();
  }
}
