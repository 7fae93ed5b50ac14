#include "flutter_embedding/preview/panels/status_card.h"

#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

struct Look {
  Phase phase;
  const char* icon;  // null: the spinner
  const char* style_class;
  const char* title;
  const char* hint;
};

constexpr char k_plain[] = "dim-label";
constexpr char k_good[] = "preview-good";
constexpr char k_bad[] = "preview-bad";

constexpr Look k_looks[] = {
    {Phase::checking, nullptr, k_plain, "正在查询", "正在查询核心是否运行"},
    {Phase::disconnected, "network-offline-symbolic", k_plain, "未连接",
     "选择配置文件，然后点击“连接”"},
    {Phase::starting, nullptr, k_plain, "正在连接…", "正在启动核心，等待端口就绪"},
    {Phase::connected, "network-vpn-symbolic", k_good, "已连接", "代理核心正在运行"},
    {Phase::stopping, nullptr, k_plain, "正在断开…", "正在恢复系统代理并停止核心"},
    {Phase::start_failed, "dialog-error-symbolic", k_bad, "连接失败", "没有连接成功，原因见下方"},
    {Phase::stop_failed, "dialog-error-symbolic", k_bad, "断开失败", "没有断开，核心仍在运行"},
    {Phase::lost, "dialog-warning-symbolic", k_bad, "未连接",
     "核心已意外退出。系统代理可能仍指向本机端口，重新连接或重新打开 Corvana 即可恢复。"},
};

constexpr char k_stop_after_start[] = "启动结束后将立即断开";
constexpr char k_no_system_proxy[] = "代理核心正在运行，未设置系统代理";

const char* hint_for(const Look& look, const ServiceStatus& status, ProxyMode mode) {
  if (status.stop_wanted) return k_stop_after_start;
  const bool sets_nothing = status.started_here && mode == ProxyMode::no_system_proxy;
  return status.phase == Phase::connected && sets_nothing ? k_no_system_proxy : look.hint;
}

// Screen readers speak it, wherever the focus is.
void announce(GtkLabel* label, const char* text) {
  if (g_str_equal(gtk_label_get_text(label), text)) return;
  AtkObject* accessible = gtk_widget_get_accessible(GTK_WIDGET(label));
  if (g_signal_lookup("announcement", ATK_TYPE_OBJECT) == 0) return;
  g_signal_emit_by_name(accessible, "announcement", text);
}

const Look& look_of(Phase phase) {
  for (const Look& look : k_looks) {
    if (look.phase == phase) return look;
  }
  return k_looks[0];
}

}  // namespace

std::unique_ptr<StatusCard> status_card_new() {
  auto card = std::make_unique<StatusCard>();
  GtkWidget* image = gtk_image_new();
  GtkWidget* spinner = gtk_spinner_new();
  GtkWidget* sign = gtk_stack_new();
  card->image = GTK_IMAGE(image);
  card->spinner = GTK_SPINNER(spinner);
  card->sign = GTK_STACK(sign);
  gtk_image_set_pixel_size(card->image, 48);
  gtk_widget_set_size_request(spinner, 48, 48);
  gtk_stack_add_named(card->sign, image, "image");
  gtk_stack_add_named(card->sign, spinner, "spinner");
  gtk_widget_set_valign(sign, GTK_ALIGN_CENTER);

  GtkWidget* title = gtk_label_new(nullptr);
  GtkWidget* hint = dim_label_new("");
  card->title = GTK_LABEL(title);
  card->hint = GTK_LABEL(hint);
  gtk_label_set_xalign(card->title, 0);
  add_style_class(title, "preview-title");
  gtk_label_set_line_wrap(card->hint, TRUE);
  gtk_label_set_line_wrap_mode(card->hint, PANGO_WRAP_WORD_CHAR);
  GtkWidget* words = gtk_box_new(GTK_ORIENTATION_VERTICAL, 3);
  gtk_container_add(GTK_CONTAINER(words), title);
  gtk_container_add(GTK_CONTAINER(words), hint);
  gtk_widget_set_hexpand(words, TRUE);
  gtk_widget_set_valign(words, GTK_ALIGN_CENTER);

  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_margin);
  set_all_margins(row, k_margin);
  gtk_container_add(GTK_CONTAINER(row), sign);
  gtk_container_add(GTK_CONTAINER(row), words);
  card->widget = gtk_frame_new(nullptr);
  add_style_class(card->widget, "view");
  gtk_container_add(GTK_CONTAINER(card->widget), row);
  return card;
}

void status_card_show(const StatusCard& card, const ServiceStatus& status, ProxyMode mode) {
  const Look& look = look_of(status.phase);
  const bool turns = look.icon == nullptr;
  gtk_stack_set_visible_child_name(card.sign, turns ? "spinner" : "image");
  // A hidden spinner that is running still causes a redraw for every frame.
  turns ? gtk_spinner_start(card.spinner) : gtk_spinner_stop(card.spinner);
  if (!turns) gtk_image_set_from_icon_name(card.image, look.icon, GTK_ICON_SIZE_DIALOG);
  for (const char* style_class : {k_plain, k_good, k_bad}) {
    set_style_class(GTK_WIDGET(card.image), style_class,
                    g_str_equal(style_class, look.style_class));
  }
  announce(card.title, look.title);
  gtk_label_set_text(card.title, look.title);
  gtk_label_set_text(card.hint, hint_for(look, status, mode));
  for (GtkWidget* sign : {GTK_WIDGET(card.sign), GTK_WIDGET(card.image)}) {
    atk_object_set_name(gtk_widget_get_accessible(sign), look.title);
  }
}

}  // namespace preview
