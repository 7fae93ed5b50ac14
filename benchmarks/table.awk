# Makes the table from lines of a name and a value. Ends with 1 when a figure is missing.

function figure(name) {
  if (figures[name] != "") return figures[name]
  print "bench: no figure for " name > "/dev/stderr"
  incomplete = 1
  return 0
}

function ratio(name, floor) {
  if (figure(floor) > 0) return figure(name) / figure(floor)
  incomplete = 1
  return 0
}

function line(what, against, measured, limit, verdict) {
  printf "| %-42s | %-45s | %-9s | %-7s | %s\n", what, against, measured, limit, verdict
}

function row(what, against, measured, unit, limit, note) {
  if (incomplete) line(what, against, "?", limit unit, "not measured")
  else line(what, against, sprintf("%.3g%s", measured, unit), limit unit, \
            measured <= limit ? "reached (" note ")" : "missed: " note)
  status = status || incomplete
  incomplete = 0
}

{ figures[$1] = $2 }

END {
  line("what", "against", "measured", "at most", "verdict")
  line("---", "---", "---", "---", "---")

  row("one probe, 1,000 processes, no match", "a bare loop of open, read and close", \
      ratio("probe_median", "bare_loop_median"), "x", 1.3, \
      sprintf("%.1f ms of a processor; the rest is the listing of /proc", figure("probe_median") / 1000))
  row("the same", "pgrep -f", ratio("probe_median", "pgrep_median"), "x", 0.2, \
      sprintf("pgrep %.1f ms of a processor", figure("pgrep_median") / 1000))

  # The fastest of many, because the pauses don't grow with the load of the machine as the commands do.
  pauses = figure("start_median_pauses")
  start = pauses + figure("start_fastest")
  row("startVPN until complete, fastest of many", sprintf("its pauses of %d ms + a script's commands", pauses), \
      start / (pauses + figure("script_fastest")), "x", 1.15, \
      sprintf("each command has to get a shell of its own; against a script that does the same it is %.3gx", \
              start / (pauses + figure("script_of_shells_fastest"))))

  row("64 KiB of log split and repaired", "memcpy and g_utf8_validate", \
      ratio("split_and_repair/core_log_median", "copy_and_validate/core_log_median"), "x", 1.5, \
      sprintf("one line in 20 Chinese; all ASCII %.2gx, all Chinese %.2gx", \
              ratio("split_and_repair/ascii_median", "copy_and_validate/ascii_median"), \
              ratio("split_and_repair/chinese_median", "copy_and_validate/chinese_median")))
  row("tail of a log of 100 MiB", "reading it once by 64 KiB", \
      ratio("tail_median", "read_once_median"), "x", 1.5, "all of it has to be read")

  row("resident memory of the idle host", "a bare window with the same view", \
      (figure("memory_host") - figure("memory_bare")) / 1024, " MiB", 3, \
      sprintf("%.1f MiB and %.1f MiB", figure("memory_host") / 1024, figure("memory_bare") / 1024))
  row("processor time of the idle host", "", figure("idle_percent"), " %", 0.1, \
      sprintf("a minute of listening to a silent log; waking up as often for nothing takes a bare window %.2g %%", \
              figure("idle_floor_percent")))
  row("from the start until the window is mapped", "a bare window with the same view", \
      ratio("window_host", "window_bare"), "x", 1.2, \
      sprintf("%.0f ms and %.0f ms; by processor time %.3gx", figure("window_host"), figure("window_bare"), \
              ratio("window_processor_host", "window_processor_bare")))
  row("processor time of a login with no proxy left", "/bin/true", figure("login"), " ms", 10, \
      sprintf("%.1f ms, so %.2gx; both with the fork of a shell", figure("true"), ratio("login", "true")))
  row("resident memory of the same", "/bin/true", figure("login_memory") / 1024, " MiB", 10, \
      sprintf("%.1f MiB, so %.2gx; loads %s", figure("true_memory") / 1024, ratio("login_memory", "true_memory"), \
              figure("login_libraries")))
  print "Medians of alternating runs, unless the row says otherwise. Functions and pgrep are measured in processor time."
  exit status
}
