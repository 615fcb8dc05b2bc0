// Of signing in and out.
export const words = {
  signInTitle: "Inicie sesión", userName: "Nombre", password: "Contraseña",
  signIn: "Iniciar sesión", signOut: "Cerrar sesión", signedIn: "{0} ({1})",
  role_view: "solo consulta", role_confirm: "puede confirmar", role_engineer: "ingeniero",
  wrongPassword: "El nombre y la contraseña no coinciden.",
  tooManyAttempts: "Demasiados intentos. Espere al menos un minuto.",
  signInFailed: "No se ha podido iniciar sesión: {0}",
};
