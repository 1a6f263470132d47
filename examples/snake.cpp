// SPDX-License-Identifier: MIT
// snake: a game in real time on a lo-res board. The snake waits for an arrow key, then crawls
// one square every few frames; the arrow keys steer it, q or Escape ends the game. Each apple
// makes it a square longer and a little faster; the wall or its own body ends the game. The
// best score is kept in $XDG_DATA_HOME/rvtools/snake-high-score (without XDG_DATA_HOME, in
// ~/.local/share/rvtools).
//
// The program never calls t_Randomize: until something seeds it, t_Random draws from the
// system's random source, so every game is new; --seed seeds it before the program starts, so
// that a game can be played again apple for apple.
//
//   Snake.app/Contents/MacOS/snake
//   Snake.app/Contents/MacOS/snake --headless --seed 149176 --keys '{Right}{wait 3000}{Up}'
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

using namespace rvtools;
namespace fs = std::filesystem;

namespace {

constexpr UInt8 Screen = 0;
// The board is the lo-res grid of the window's upper 12 lines, its outermost points the wall.
// Its colours are the game's state: t_Scrn tells what lies ahead of the snake.
constexpr Int BoardWidth = 40;
constexpr Int BoardHeight = 24;
constexpr Int Field = 0, Wall = 10, Body = 12, Apple = 1, Words = 15, Banner = 13;
constexpr Int ScoreLine = 13, MessageLine = 15;
constexpr const char* HighScoreFile = "rvtools/snake-high-score";

struct Square {
  Int x = 0, y = 0;
  bool operator==(const Square&) const = default;
};

struct Game {
  std::deque<Square> snake{{10, 12}};  // the head first
  Square heading;                      // {0, 0} until the first arrow key
  Int growth = 2;                      // squares still to grow, one a step
  Int score = 0;
  Int highScore = 0;
};

void plot(Square square, Int colour) {
  t_Color(Screen, colour);
  t_Plot(Screen, square.x, square.y);
}

// Paints the board's points from `margin` points in from its edges.
void paint(Int margin, Int colour) {
  for (Int y = margin; y < BoardHeight - margin; ++y) {
    for (Int x = margin; x < BoardWidth - margin; ++x) plot({x, y}, colour);
  }
}

void printAt(Int line, const std::string& text) {
  t_Color(Screen, Words);
  t_Vtab(Screen, line);
  t_Htab(Screen, 1);
  t_ClearEndOfLine(Screen);
  t_Print(Screen, text);
}

void showScore(const Game& game) {
  printAt(ScoreLine, "Score " + std::to_string(game.score) + "   High score " +
                         std::to_string(std::max(game.score, game.highScore)));
}

// An apple on a free square, drawn by t_Random from the free squares in order; false when the
// snake fills the board.
bool placeApple() {
  std::vector<Square> free;
  for (Int y = 1; y < BoardHeight - 1; ++y) {
    for (Int x = 1; x < BoardWidth - 1; ++x) {
      if (t_Scrn(Screen, x, y) == Field) free.push_back({x, y});
    }
  }
  if (free.empty()) return false;
  plot(free[static_cast<std::size_t>(t_Random(static_cast<Int>(free.size()) - 1))], Apple);
  return true;
}

// A relative folder counts as none, as the XDG base directories have it, so that the file never
// lands in the current folder; none at all gives the empty path.
fs::path highScorePath() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && fs::path(data).is_absolute()) return fs::path(data) / HighScoreFile;
  const char* home = std::getenv("HOME");
  if (home != nullptr && fs::path(home).is_absolute()) {
    return fs::path(home) / ".local/share" / HighScoreFile;
  }
  return {};
}

// The number in the file; 0 when it is missing or holds anything else.
Int readHighScore(const fs::path& path) {
  std::ifstream file(path);
  char text[24] = {};
  file.read(text, sizeof text);
  std::string_view digits(text, static_cast<std::size_t>(file.gcount()));
  if (digits.ends_with('\n')) digits.remove_suffix(1);
  Int score = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), score);
  return error == std::errc() && end == digits.data() + digits.size() && score > 0 ? score : 0;
}

// A file that cannot be written costs the record, not the game: one line in the log.
void writeHighScore(const fs::path& path, Int score) {
  if (path.empty())
    return t_Log("snake: No high score is kept without XDG_DATA_HOME or HOME as a full path.");
  const std::string failure = "snake: The high score could not be written to " + path.string();
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  if (error) return t_Log(failure + ": " + error.message() + ".");
  std::ofstream file(path, std::ios::trunc);
  file << score << '\n';
  file.close();
  if (!file) t_Log(failure + ".");
}

// The direction of an arrow key; {0, 0} for any other key.
Square directionOf(Int key) {
  if (key == KeyValue::Left) return {-1, 0};
  if (key == KeyValue::Right) return {1, 0};
  if (key == KeyValue::Up) return {0, -1};
  if (key == KeyValue::Down) return {0, 1};
  return {};
}

// One square on, into the square the tail leaves if need be; false when the snake runs into
// the wall or into itself, or fills the board.
bool crawl(Game& game) {
  if (game.heading == Square{}) return true;
  const Square head{game.snake.front().x + game.heading.x, game.snake.front().y + game.heading.y};
  if (game.growth > 0) {
    --game.growth;
  } else {
    plot(game.snake.back(), Field);
    game.snake.pop_back();
  }
  const Int ahead = t_Scrn(Screen, head.x, head.y);
  if (ahead != Field && ahead != Apple) return false;
  game.snake.push_front(head);
  plot(head, Body);
  if (ahead == Field) return true;
  ++game.score;
  ++game.growth;
  showScore(game);
  return placeApple();
}

// Five frames a step at first, one fewer every five apples, at least two.
Int framesPerStep(Int score) {
  return std::max<Int>(2, 5 - score / 5);
}

// [manual snake-loop]
// Takes the waiting keys up to the first that starts the snake or turns it by a right angle,
// so that two quick turns take two steps; false for a key that ends the game.
bool steer(Game& game) {
  for (Int key = t_InKey(Screen); key >= 0; key = t_InKey(Screen)) {
    if (key == 'q' || key == 'Q' || key == KeyValue::Escape) return false;
    const Square turn = directionOf(key);
    if (turn != Square{} && turn.x * game.heading.x + turn.y * game.heading.y == 0) {
      game.heading = turn;
      return true;
    }
  }
  return true;
}

// The snake moves once every few frames, so that it crawls at the same speed on every machine.
void play(Game& game) {
  for (;;) {
    for (Int frame = 0; frame < framesPerStep(game.score); ++frame) t_WaitFrame(Screen);
    if (!steer(game) || !crawl(game)) return;
  }
}
// [end]

// The end: the board gives way to the result, which does not depend on where the snake ended.
void showGameOver(const Game& game, bool newHighScore) {
  paint(1, Field);
  t_HColor(Screen, Banner);
  t_HText(Screen, 248, 176, "GAME OVER");  // in the middle of the board's 640 x 384 pixels
  showScore(game);
  printAt(MessageLine, newHighScore ? "Game over. A new high score!" : "Game over.");
}

}  // namespace

void snake() {
  // Set-up: a mixed screen, the board above and the score below; the high score from the file.
  t_InitWindow(0, 24, BoardWidth, 17, 16, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Graphic(Screen, false);
  t_Print(Screen, "\f");
  Game game;
  const fs::path path = highScorePath();
  game.highScore = readHighScore(path);
  paint(0, Wall);
  paint(1, Field);
  plot(game.snake.front(), Body);
  placeApple();
  showScore(game);
  printAt(MessageLine, "Arrows start and steer, q quits.");

  // Run: the snake stands until the first arrow key.
  play(game);

  // End: a new best score is kept.
  const bool newHighScore = game.score > game.highScore;
  if (newHighScore) writeHighScore(path, game.score);
  showGameOver(game, newHighScore);
  t_QuitProgram(0);
}

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, snake);
}
