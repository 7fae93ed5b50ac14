#include "flutter_embedding/preview/runner/automation.h"

#include <utility>

namespace preview {

struct Automation {
  enum class Step { first_answer, outcome, drawing, disconnect, done };

  Options options;
  Life life;
  AutomationActions actions;
  Step step = Step::first_answer;
  ServiceStatus status;
};

namespace {

// Time for the first lines of the log and the last frames of an animation.
constexpr unsigned k_settle_milliseconds = 900;
constexpr unsigned k_drawing_poll_milliseconds = 100;

using Step = Automation::Step;

bool is_settled(Phase phase) { return phase != Phase::checking && !is_busy(phase); }

void close(Automation* automation) {
  automation->step = Step::done;
  automation->actions.close();
}

void leave(Automation* automation) {
  if (!automation->options.quit) {
    automation->step = Step::done;
    return;
  }
  automation->step = Step::disconnect;
  if (automation->status.core_running) return automation->actions.disconnect();
  // Otherwise the user has started a task; its end closes the window.
  if (is_settled(automation->status.phase)) close(automation);
}

void draw(Automation* automation);

void draw_in(Automation* automation, unsigned milliseconds) {
  run_later(milliseconds, automation->life,
            [automation] { run_when_idle(automation->life, [automation] { draw(automation); }); });
}

void draw(Automation* automation) {
  if (!automation->actions.is_drawn()) return draw_in(automation, k_drawing_poll_milliseconds);
  if (!automation->options.screenshot.empty()) automation->actions.take_screenshot();
  leave(automation);
}

void begin_drawing(Automation* automation) {
  automation->step = Step::drawing;
  draw_in(automation, k_settle_milliseconds);
}

void take_first_answer(Automation* automation) {
  if (!automation->options.connect) return begin_drawing(automation);
  automation->step = Step::outcome;
  // Not from here, because connecting calls automation_notice().
  run_later(0, automation->life, [automation] {
    if (!automation->actions.connect()) begin_drawing(automation);
  });
}

}  // namespace

std::shared_ptr<Automation> automation_new(const Options& options, const Life& life,
                                           AutomationActions actions) {
  auto automation = std::make_shared<Automation>();
  automation->options = options;
  automation->life = life;
  automation->actions = std::move(actions);
  return automation;
}

void automation_notice(Automation* automation, const ServiceStatus& status) {
  automation->status = status;
  if (!is_settled(status.phase)) return;
  switch (automation->step) {
    case Step::first_answer:
      return take_first_answer(automation);
    case Step::outcome:
      return begin_drawing(automation);
    case Step::disconnect:
      return close(automation);
    case Step::drawing:
    case Step::done:
      return;
  }
}

std::string write_screenshot(GtkWidget* widget, const std::string& file) {
  GtkWidget* window = gtk_widget_get_toplevel(widget);
  // Without a compositor's frames a late change may not be laid out yet, and GTK would draw
  // nothing.
  gtk_container_check_resize(GTK_CONTAINER(window));
  const int width = gtk_widget_get_allocated_width(widget);
  const int height = gtk_widget_get_allocated_height(widget);
  const int scale = gtk_widget_get_scale_factor(widget);
  cairo_surface_t* surface =
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale);
  cairo_surface_set_device_scale(surface, scale, scale);
  cairo_t* cairo = cairo_create(surface);
  gtk_render_background(gtk_widget_get_style_context(window), cairo, 0, 0, width, height);
  gtk_widget_draw(widget, cairo);
  cairo_destroy(cairo);
  g_autoptr(GdkPixbuf) picture =
      gdk_pixbuf_get_from_surface(surface, 0, 0, width * scale, height * scale);
  cairo_surface_destroy(surface);
  if (picture == nullptr) return "窗口没有内容";

  g_autoptr(GError) error = nullptr;
  if (gdk_pixbuf_save(picture, file.c_str(), "png", &error, nullptr)) return {};
  return error->message;
}

}  // namespace preview
